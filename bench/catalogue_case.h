#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vdstomgr/catalogue/photo_db_manager.h"

/// What is measured: operations of the catalogue against hand-written code. A subject has a source
/// with its cases and, for the other side, a class that holds its prepared statements.
namespace bench {

/// One operation on an open catalogue, for the photo of that number. False when it failed.
using Operation = std::function<bool(std::uint64_t number)>;
/// Opens the catalogue in a file for one side of a case.
using Opener = std::function<Operation(const std::string& path)>;

/// An operation of an object of type Side, which is made of the file's path.
template <class Side>
Opener On(bool (*operation)(Side& side, std::uint64_t number)) {
  return [operation](const std::string& path) -> Operation {
    return [side = std::make_shared<Side>(path), operation](std::uint64_t number) {
      return operation(*side, number);
    };
  };
}

struct Case {
  std::string name;
  Opener ours;
  Opener peer;
  int iterations;
  int adds = 0;  ///< photos that one run adds: it gets new numbers then, and they go afterwards
  std::string note = {};  ///< what a reader of the table must know
  int items = 0;          ///< that one run works on, when it adds none
  /// Makes a side's file ready before each run, unmeasured.
  void (*prepare)(const std::string& path, int photos) = nullptr;
};

/// The library's catalogue, opened.
struct OurCatalogue : CRkPhotoDBManager {
  explicit OurCatalogue(const std::string& path);
};

std::vector<Case> PhotoCases();
std::vector<Case> FolderCases();
std::vector<Case> TagCases();
std::vector<Case> StatementCases();
std::vector<Case> ListCases();
std::vector<Case> SummaryCases();
std::vector<Case> QueueCases();

}  // namespace bench
