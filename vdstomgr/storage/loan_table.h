#pragma once

#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>
#include <utility>

#include "vdstomgr/platform/framework/types.h"

namespace vdstomgr {

/// Things lent to threads under 32-bit numbers. A number is not 0, and comes up again only after
/// all others.
template <class Loan>
class LoanTable {
 public:
  DWORD Lend(Loan loan) {
    const std::lock_guard lock(mutex_);
    do {
      ++last_;
    } while (last_ == 0 || loans_.contains(last_));
    loans_.emplace(last_, Entry{std::this_thread::get_id(), std::move(loan)});
    return last_;
  }

  /// Nothing for a number that is not in force or was given to another thread.
  std::optional<Loan> TakeBack(DWORD number) {
    const std::lock_guard lock(mutex_);
    const auto found = loans_.find(number);
    if (found == loans_.end() || found->second.borrower != std::this_thread::get_id()) {
      return std::nullopt;
    }
    std::optional<Loan> loan(std::move(found->second.loan));
    loans_.erase(found);
    return loan;
  }

 private:
  struct Entry {
    std::thread::id borrower;
    Loan loan;
  };

  std::mutex mutex_;
  std::unordered_map<DWORD, Entry> loans_;
  DWORD last_ = 0;
};

}  // namespace vdstomgr
