#ifndef HALVORINE_SERVICE_MODULELOCK_H
#define HALVORINE_SERVICE_MODULELOCK_H

#include <halvorine/com.h>

namespace halvorine {

// The module's one lock count: every live object of the five classes holds one lock, and so does
// each LockServer(TRUE). The library may be unloaded when it is 0.
class ModuleLock {
 public:
  static void Lock();
  static void Unlock();
  static LONG Count();
};

}  // namespace halvorine

#endif  // HALVORINE_SERVICE_MODULELOCK_H
