#include "bench/fuzz/fuzz_files.h"
#include "vdstomgr/storage/array_file.h"
#include "vdstomgr/storage/array_index.h"
#include "vdstomgr/storage/little_endian.h"

// An array file of any bytes, and any operations on it and on indexes over it.
namespace {

using fuzz::Playground;
using fuzz::Require;
using fuzz::Step;

constexpr const char* kName = "units.rfa";
constexpr std::size_t kUnitSizeAt = 16;
/// Larger units are read where they lie, but not added.
constexpr DWORD kLargestUnit = 4096;
constexpr int kMostUnits = 5000;

class ArraySession {
 public:
  explicit ArraySession(DWORD unit_size)
      : unit_size_(unit_size), unit_(std::min(unit_size, kLargestUnit), BYTE{'u'}) {
    array_.OpenFile(Playground::Get().Path(kName).c_str());
  }

  void Do(const Step& step) {
    switch (step.code % 8) {
      case 0:
        return Read(step.Position());
      case 1:
        return Change(step);
      case 2:
        return CreateIndex(step);
      case 3:
        return Filter(step);
      case 4:
        return Find(root_, step);
      case 5:
        return Find(filtered_, step);
      case 6:
        return Look(step);
      default:
        array_.CloseFile();
        array_.OpenFile(Playground::Get().Path(kName).c_str(), step.Position());
    }
  }

 private:
  using Index = CRkFileArrayIndex;

  void Read(int position) {
    const void* const unit = array_.GetBuffer(position);
    if (unit != nullptr) fuzz::Touch(unit, unit_size_);
    array_.ReleaseBuffer(false);
  }

  void Change(const Step& step) {
    CDWordArray indices = {step.b, step.c, static_cast<DWORD>(step.Position())};
    const bool is_small = unit_size_ <= kLargestUnit && array_.GetSize() < kMostUnits;
    switch (step.b % 5) {
      case 0:
        return is_small ? void(array_.Add(unit_.data())) : void();
      case 1:
        return is_small ? void(array_.InsertAt(step.Position(), unit_.data())) : void();
      case 2:
        return array_.RemoveAt(step.Position());
      case 3:
        return array_.RemoveAt(indices);
      default:
        array_.SetSize(step.Position());
    }
  }

  static Index::INDEX_TYPE KindOf(const Step& step) {
    return static_cast<Index::INDEX_TYPE>(step.a % 5);  // one of them unknown
  }
  /// From -1 to far beyond a unit.
  static int LengthOf(const Step& step) { return step.b == 0xFF ? INT32_MAX : step.b % 64 - 1; }
  static int OffsetOf(const Step& step) { return static_cast<signed char>(step.c); }
  static int CompareAddresses(const void* left, const void* right) {
    const auto address = [](const void* entry) {
      return reinterpret_cast<std::uintptr_t>(*static_cast<const void* const*>(entry));
    };
    return address(left) < address(right) ? -1 : address(left) > address(right);
  }

  void NoteLength(const Step& step) {
    if (LengthOf(step) > static_cast<int>(sizeof key_)) has_short_keys_ = false;
  }

  void CreateIndex(const Step& step) {
    NoteLength(step);
    root_.CreateFileArrayIndex(&array_, KindOf(step), LengthOf(step), OffsetOf(step),
                               CompareAddresses);
  }

  void Filter(const Step& step) {
    CStringArray texts = {step.Text().c_str(), "k1"};
    CDWordArray numbers = {step.Number(), step.c};
    CPtrArray blocks = {key_};
    const auto kind = KindOf(step);
    const int length = LengthOf(step);
    filtered_.CreateFilteredIndexFormStringIndex(&root_, texts, kind, length, 0, CompareAddresses);
    filtered_.CreateFilteredIndexForDWordIndex(&root_, numbers, kind, length, 0, CompareAddresses);
    NoteLength(step);
    if (!has_short_keys_) return;
    filtered_.CreateFilteredIndexForBinaryIndex(&root_, blocks, kind, length, 0, CompareAddresses);
    filtered_.FindBinary(key_, step.Flag());
    root_.FindBinary(key_, step.Flag());
  }

  void Find(Index& index, const Step& step) {
    const int size = index.GetSize();
    const int found[] = {index.FindDWORD(step.Number(), step.Flag()),
                         index.FindString(step.Text().c_str(), step.Flag()),
                         index.FindString("k1", true)};
    for (const int position : found) Require(position >= -1 && position < size, "a position");
  }

  void Look(const Step& step) {
    for (Index* const index : {&root_, &filtered_}) {
      const int position = step.Position();
      index->GetValueCount(position);
      index->FindValueStartIndex(position, step.Flag());
      index->FindValueEndIndex(position);
      index->IndexToArray(position);
      const void* const unit = index->GetBuffer(position);
      if (unit != nullptr) fuzz::Touch(unit, unit_size_);
      index->ReleaseBuffer(false);
    }
  }

  DWORD unit_size_;
  fuzz::Bytes unit_;
  BYTE key_[64] = {'k', '1'};
  bool has_short_keys_ = true;  ///< so far: key_ is long enough for the indexes
  CRkFileArrayManager array_;
  Index root_;
  Index filtered_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size) {
  const Playground& playground = Playground::Get();
  fuzz::Input input(data, size);
  const auto file = input.Rest();
  playground.Write(kName, file);
  const bool has_unit_size = file.size() >= kUnitSizeAt + sizeof(DWORD);
  ArraySession session(has_unit_size ? vdstomgr::LoadLittle<DWORD>(file.data() + kUnitSizeAt) : 0);
  for (const Step& step : input.Steps()) session.Do(step);
  return 0;
}
