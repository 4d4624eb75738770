#include "tests/dll/loaded_library.h"

#include <windows.h>

#include <stdexcept>

namespace zt::testing {

LoadedLibrary::LoadedLibrary(const std::string& path) : library_(LoadLibraryA(path.c_str())) {
  if (library_ == nullptr) {
    throw std::runtime_error("cannot load " + path + ": error " + std::to_string(GetLastError()));
  }
}

LoadedLibrary::~LoadedLibrary() { FreeLibrary(static_cast<HMODULE>(library_)); }

void* LoadedLibrary::Find(const std::string& symbol) const {
  const FARPROC address = GetProcAddress(static_cast<HMODULE>(library_), symbol.c_str());
  if (address == nullptr) {
    throw std::runtime_error("no " + symbol);
  }
  return reinterpret_cast<void*>(address);
}

}  // namespace zt::testing
