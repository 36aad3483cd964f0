#include "vdstomgr/platform/dao/sqlite/functions.h"

#include <sqlite3.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vdstomgr/platform/dao/dao_error.h"
#include "vdstomgr/platform/dao/dao_exception.h"
#include "vdstomgr/platform/dao/jet/like.h"
#include "vdstomgr/platform/dao/number_text.h"
#include "vdstomgr/platform/dao/sqlite/errors.h"
#include "vdstomgr/platform/dao/sqlite/text_search.h"
#include "vdstomgr/platform/text/case_folding.h"

namespace vdstomgr::sqlite {
namespace {

using Context = sqlite3_context;
using Argument = sqlite3_value;

std::string_view TextOf(Argument* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return text ? std::string_view(text, static_cast<size_t>(sqlite3_value_bytes(value)))
              : std::string_view();
}

bool IsNull(Argument* value) {
  return sqlite3_value_type(value) == SQLITE_NULL;
}

// Reports a failure in a form from which ThrowEngineError recovers the number.
void Fail(Context* context, const CDaoException& error) {
  const std::string message = std::to_string(error.Code()) + "|" + error.what();
  sqlite3_result_error(context, message.data(), static_cast<int>(message.size()));
}

// Runs a function body that may throw CDaoException; nothing may fly through the engine.
template <class Body>
void Guard(Context* context, Body body) noexcept {
  try {
    body();
  } catch (const CDaoException& error) {
    Fail(context, error);
  } catch (...) {
    sqlite3_result_error_nomem(context);
  }
}

int CompareText(void*, int size_a, const void* a, int size_b, const void* b) {
  return CompareFolded({static_cast<const char*>(a), static_cast<size_t>(size_a)},
                       {static_cast<const char*>(b), static_cast<size_t>(size_b)});
}

void DeletePattern(void* pattern) {
  delete static_cast<jet::LikePattern*>(pattern);
}

// like(pattern, text), as the engine calls it for "text LIKE pattern". The engine keeps what was
// made of a constant pattern from row to row.
void Like(Context* context, int, Argument** arguments) {
  if (IsNull(arguments[0]) || IsNull(arguments[1])) return;
  Guard(context, [&] {
    auto* pattern = static_cast<jet::LikePattern*>(sqlite3_get_auxdata(context, 0));
    std::unique_ptr<jet::LikePattern> made;
    if (!pattern) {
      made = std::make_unique<jet::LikePattern>(TextOf(arguments[0]));
      pattern = made.get();
    }
    sqlite3_result_int(context, pattern->Matches(TextOf(arguments[1])) ? 1 : 0);
    if (made) sqlite3_set_auxdata(context, 0, made.release(), DeletePattern);
  });
}

// vdsto_search(search, text): the LIKE tests of a query on a column with a text index. The engine
// keeps the search from row to row, since asking a value for its pointer compares names.
void Search(Context* context, int, Argument** arguments) {
  auto* search = static_cast<TextSearch*>(sqlite3_get_auxdata(context, 0));
  if (!search) {
    search = static_cast<TextSearch*>(sqlite3_value_pointer(arguments[0], kTextSearchPointer));
    sqlite3_set_auxdata(context, 0, search, nullptr);
  }
  if (!search || IsNull(arguments[1])) return;
  Guard(context,
        [&] { sqlite3_result_int(context, search->Passes(TextOf(arguments[1])) ? 1 : 0); });
}

// The whole number that an operand of MOD or \ counts as: rounded first.
std::int64_t RoundedOperand(Argument* value) {
  if (sqlite3_value_numeric_type(value) == SQLITE_INTEGER) return sqlite3_value_int64(value);
  const auto rounded = dao::RoundToInteger(sqlite3_value_double(value));
  if (!rounded) dao::Throw(dao::Error::NumberOverflow, "MOD");
  return *rounded;
}

// Both operands of an integer operation are whole and the divisor is neither 0 nor the one (-1) for
// which the machine's division can overflow.
template <class Operation>
void IntegerOperation(Context* context, Argument** arguments, Operation operation) {
  if (IsNull(arguments[0]) || IsNull(arguments[1])) return;
  Guard(context, [&] {
    const std::int64_t a = RoundedOperand(arguments[0]);
    const std::int64_t b = RoundedOperand(arguments[1]);
    if (b == 0) dao::Throw(dao::Error::ZeroDivisor);
    operation(a, b);
  });
}

void Mod(Context* context, int, Argument** arguments) {
  IntegerOperation(context, arguments, [&](std::int64_t a, std::int64_t b) {
    sqlite3_result_int64(context, b == -1 ? 0 : a % b);
  });
}

void IntegerDivision(Context* context, int, Argument** arguments) {
  IntegerOperation(context, arguments, [&](std::int64_t a, std::int64_t b) {
    if (b != -1) return sqlite3_result_int64(context, a / b);
    if (a == INT64_MIN) dao::Throw(dao::Error::NumberOverflow, "\\");
    sqlite3_result_int64(context, -a);
  });
}

void Division(Context* context, int, Argument** arguments) {
  if (IsNull(arguments[0]) || IsNull(arguments[1])) return;
  Guard(context, [&] {
    const double divisor = sqlite3_value_double(arguments[1]);
    if (divisor == 0) dao::Throw(dao::Error::ZeroDivisor);
    sqlite3_result_double(context, sqlite3_value_double(arguments[0]) / divisor);
  });
}

void Power(Context* context, int, Argument** arguments) {
  if (IsNull(arguments[0]) || IsNull(arguments[1])) return;
  Guard(context, [&] {
    const double power =
        std::pow(sqlite3_value_double(arguments[0]), sqlite3_value_double(arguments[1]));
    if (!std::isfinite(power)) dao::Throw(dao::Error::NumberOverflow, "^");
    sqlite3_result_double(context, power);
  });
}

std::optional<double> NumberOf(Argument* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    case SQLITE_TEXT:
      return dao::ParseNumber(TextOf(value));
    default:
      return std::nullopt;
  }
}

// What an integer column takes: numeric text and fractions become whole numbers; anything else
// passes unchanged, for the column's CHECK to refuse.
void ToInteger(Context* context, int, Argument** arguments) {
  if (sqlite3_value_type(arguments[0]) == SQLITE_TEXT) {
    if (const auto whole = dao::ParseInteger(TextOf(arguments[0]))) {
      return sqlite3_result_int64(context, *whole);
    }
  }
  const auto number = NumberOf(arguments[0]);
  const auto whole = number ? dao::RoundToInteger(*number) : std::nullopt;
  if (whole) return sqlite3_result_int64(context, *whole);
  sqlite3_result_value(context, arguments[0]);
}

void ToReal(Context* context, int, Argument** arguments) {
  if (const auto number = NumberOf(arguments[0])) return sqlite3_result_double(context, *number);
  sqlite3_result_value(context, arguments[0]);
}

// jet_single(x): the one value of a scalar sub-query; a second row is refused, none gives null.
struct SingleState {
  sqlite3_value* value;
  bool seen;
};

void SingleStep(Context* context, int, Argument** arguments) {
  auto* state = static_cast<SingleState*>(sqlite3_aggregate_context(context, sizeof(SingleState)));
  if (!state) return sqlite3_result_error_nomem(context);
  if (state->seen) {
    return Guard(context, [] { dao::Throw(dao::Error::SubqueryManyRows); });
  }
  state->seen = true;
  state->value = sqlite3_value_dup(arguments[0]);
}

void SingleFinal(Context* context) {
  auto* state = static_cast<SingleState*>(sqlite3_aggregate_context(context, 0));
  if (!state || !state->value) return;
  sqlite3_result_value(context, state->value);
  sqlite3_value_free(state->value);
}

struct Function {
  const char* name;
  int arguments;
  void (*call)(Context*, int, Argument**);
};

constexpr Function kFunctions[] = {
    {"like", 2, Like},        {"jet_mod", 2, Mod},
    {"jet_div", 2, Division}, {"jet_intdiv", 2, IntegerDivision},
    {"jet_pow", 2, Power},    {"jet_integer", 1, ToInteger},
    {"jet_real", 1, ToReal},
};

}  // namespace

void InstallFunctions(sqlite3* db) {
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  Check(db, sqlite3_create_collation(db, kTextOrderName, SQLITE_UTF8, nullptr, CompareText), "");
  for (const Function& f : kFunctions) {
    Check(
        db,
        sqlite3_create_function(db, f.name, f.arguments, kFlags, nullptr, f.call, nullptr, nullptr),
        "");
  }
  Check(db,
        sqlite3_create_function(db, "jet_single", 1, kFlags, nullptr, nullptr, SingleStep,
                                SingleFinal),
        "");
  // Not the same from call to call.
  Check(db,
        sqlite3_create_function(db, "vdsto_search", 2, SQLITE_UTF8 | SQLITE_DIRECTONLY, nullptr,
                                Search, nullptr, nullptr),
        "");
}

}  // namespace vdstomgr::sqlite
