// A library that is loaded at run time, as a host does that does not link it.

#ifndef ZT_TESTS_DLL_LOADED_LIBRARY_H
#define ZT_TESTS_DLL_LOADED_LIBRARY_H

#include <string>
#include <typeinfo>

namespace zt::testing {

/// Loads a library for a scope.
class LoadedLibrary {
 public:
  /// Throws std::runtime_error, with what the system says, when the library cannot be loaded.
  explicit LoadedLibrary(const std::string& path);
  /// Frees the library; nothing that came from it may be alive.
  ~LoadedLibrary();
  LoadedLibrary(const LoadedLibrary&) = delete;
  LoadedLibrary& operator=(const LoadedLibrary&) = delete;

  /// The exported function of this name and type, e.g. Function<void(int)>("Set"). Throws std::runtime_error when there is
  /// none.
  template <typename Signature>
  Signature* Function(const std::string& name) const {
    return reinterpret_cast<Signature*>(Find(SymbolName(name, Parameters(static_cast<Signature*>(nullptr)))));
  }

 private:
  // What the name of a function's type says of its parameters: it stands between "Fv", for a function that returns nothing, and
  // "E". The symbol of a function ends in the same text.
  template <typename Result, typename... Arguments>
  static std::string Parameters(Result (*)(Arguments...)) {
    const std::string type = typeid(void(Arguments...)).name();
    return type.substr(2, type.size() - 3);
  }
  static std::string SymbolName(const std::string& name, const std::string& parameters) {
    return "_Z" + std::to_string(name.size()) + name + parameters;
  }

  [[nodiscard]] void* Find(const std::string& symbol) const;

  void* library_ = nullptr;
};

}  // namespace zt::testing

#endif  // ZT_TESTS_DLL_LOADED_LIBRARY_H
