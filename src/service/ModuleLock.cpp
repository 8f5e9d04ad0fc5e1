#include "service/ModuleLock.h"

#include <atomic>

namespace halvorine {
namespace {

std::atomic<LONG> lockCount{0};

}  // namespace

void ModuleLock::Lock() { ++lockCount; }
void ModuleLock::Unlock() { --lockCount; }
LONG ModuleLock::Count() { return lockCount.load(); }

}  // namespace halvorine
