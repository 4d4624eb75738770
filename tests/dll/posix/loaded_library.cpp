#include "tests/dll/loaded_library.h"

#include <dlfcn.h>

#include <stdexcept>

namespace zt::testing {

LoadedLibrary::LoadedLibrary(const std::string& path) : library_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (library_ == nullptr) {
    throw std::runtime_error(dlerror());
  }
}

LoadedLibrary::~LoadedLibrary() { dlclose(library_); }

void* LoadedLibrary::Find(const std::string& symbol) const {
  void* const address = dlsym(library_, symbol.c_str());
  if (address == nullptr) {
    throw std::runtime_error("no " + symbol);
  }
  return address;
}

}  // namespace zt::testing
