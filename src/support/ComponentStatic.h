// The component's process-wide objects (the trace log, the settings, the viewer file list, the
// transfer syntax table): made on first use and freed when the component unloads, by an ELF
// destructor of the library. At exit that runs behind every static destructor of the host, as a
// Windows DLL's statics go at DLL_PROCESS_DETACH, so a host that releases objects from its own
// statics still finds them alive; at dlclose it leaves nothing behind the unloaded code.
#ifndef HALVORINE_SUPPORT_COMPONENTSTATIC_H
#define HALVORINE_SUPPORT_COMPONENTSTATIC_H

namespace halvorine {

// Takes object, to be destroyed by destroy(object) when the component unloads, in the reverse
// order of the calls.
void FreeAtUnload(void* object, void (*destroy)(void*));

template <class T>
T& ComponentStatic() {
  // The static's initialisation makes two first calls on two threads safe.
  static T* const object = [] {
    T* made = new T;
    FreeAtUnload(made, [](void* held) { delete static_cast<T*>(held); });
    return made;
  }();
  return *object;
}

}  // namespace halvorine

#endif  // HALVORINE_SUPPORT_COMPONENTSTATIC_H
