#include "support/ComponentStatic.h"

#include <mutex>
#include <utility>
#include <vector>

namespace halvorine {
namespace {

struct Held {
  void* object;
  void (*destroy)(void*);
};

// Plain pointers, not statics with destructors of their own: those would go at exit before the
// host's statics.
std::mutex* heldLock = new std::mutex;
std::vector<Held>* held = new std::vector<Held>;

__attribute__((destructor)) void FreeHeldObjects() {
  for (auto entry = held->rbegin(); entry != held->rend(); ++entry) entry->destroy(entry->object);
  delete std::exchange(held, nullptr);
  delete std::exchange(heldLock, nullptr);
}

}  // namespace

void FreeAtUnload(void* object, void (*destroy)(void*)) {
  // Once unloading has begun, a late object just stays.
  if (heldLock == nullptr) return;
  const std::lock_guard<std::mutex> hold(*heldLock);
  held->push_back(Held{object, destroy});
}

}  // namespace halvorine
