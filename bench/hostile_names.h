// Names that a program would choose to slow a search for similar files, and ordinary ones.

#ifndef ZT_BENCH_HOSTILE_NAMES_H
#define ZT_BENCH_HOSTILE_NAMES_H

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "bench/file_names.h"

namespace zt::bench {

/// Files of one process, and a path that it writes to.
struct Shape {
  std::vector<std::wstring> paths;
  std::wstring target;
};

inline const std::wstring kFolder = L"C:\\d\\";

inline std::wstring Letters(std::size_t count, wchar_t letter = L'a') { return std::wstring(count, letter); }

/// 240 files "aaa!", one of each length.
inline Shape OneLetterAndMark(std::size_t /*files*/) {
  Shape shape;
  for (std::size_t length = 1; length <= 240; ++length) {
    shape.paths.push_back(kFolder + Letters(length) + L"!");
  }
  shape.target = kFolder + Letters(240) + L".x";
  return shape;
}

/// "a.17": one stem, any number of extensions.
inline Shape OneStem(std::size_t files) {
  Shape shape;
  for (std::size_t number = 0; number < files; ++number) {
    shape.paths.push_back(kFolder + L"a." + std::to_wstring(number));
  }
  shape.target = kFolder + Letters(240) + L".e";
  return shape;
}

/// "aaa.17.x": stems that hold a dot, of 100 lengths.
inline Shape DottedStems(std::size_t files) {
  Shape shape;
  for (std::size_t number = 0; number < files; ++number) {
    shape.paths.push_back(kFolder + Letters(1 + number % 100) + L"." + std::to_wstring(number) + L".x");
  }
  shape.target = kFolder + Letters(240) + L".e.x";
  return shape;
}

/// "aaa.y17": every length of a stem, some 400 extensions each.
inline Shape EveryStem(std::size_t files) {
  Shape shape;
  for (std::size_t number = 0; number < files; ++number) {
    shape.paths.push_back(kFolder + Letters(1 + number % 240) + L".y" + std::to_wstring(number));
  }
  shape.target = kFolder + Letters(240) + L".x";
  return shape;
}

/// "...17" against dots.
inline Shape Dots(std::size_t files) {
  Shape shape;
  for (std::size_t number = 0; number < files; ++number) {
    shape.paths.push_back(kFolder + Letters(1 + number % 240, L'.') + std::to_wstring(number / 240));
  }
  shape.target = kFolder + Letters(240, L'.');
  return shape;
}

/// "aaa.bbb.17": 8,000 stems inside each other, 12 extensions each.
inline Shape StemsInsideStems(std::size_t files) {
  Shape shape;
  for (std::size_t number = 0; number < files; ++number) {
    const std::size_t stem = number / 12;
    shape.paths.push_back(kFolder + Letters(1 + stem % 200) + L"." + Letters(1 + stem / 200, L'b') + L"." +
                          std::to_wstring(number % 12));
  }
  shape.target = kFolder + Letters(200) + L"." + Letters(40, L'b');
  return shape;
}

/// 500 keys "aaa!" without a folder, which may be anywhere in a target of 523 units.
inline Shape KeysWithoutFolder(std::size_t /*files*/) {
  Shape shape;
  for (std::size_t length = 1; length <= 500; ++length) {
    shape.paths.push_back(Letters(length) + L"!");
  }
  shape.target = Letters(519);
  return shape;
}

/// Every part of one name, of 255 units for more than 32,385 files: as many files as can be occur in the target's name.
inline Shape EveryPart(std::size_t files) {
  std::mt19937 random(1);
  std::wstring name;
  for (std::size_t length = 1; length <= 255 && length * (length - 1) / 2 < files; ++length) {
    name += static_cast<wchar_t>(L'a' + random() % 26);
  }
  Shape shape;
  for (std::size_t begin = 0; begin < name.size(); ++begin) {
    for (std::size_t length = 1; begin + length <= name.size(); ++length) {
      shape.paths.push_back(kFolder + name.substr(begin, length));
    }
  }
  shape.target = kFolder + L"x" + name + L".y";
  return shape;
}

/// "aaa.aab": of every length of a stem one file, whose extension nearly occurs wherever the target repeats its letter.
inline Shape OneFileAStem(std::size_t /*files*/) {
  Shape shape;
  for (std::size_t length = 1; length < 239; ++length) {
    shape.paths.push_back(kFolder + Letters(length) + L"." + Letters(238 - length) + L"b");
  }
  shape.target = kFolder + Letters(240) + L".x";
  return shape;
}

/// Ordinary names, for comparison.
inline Shape People(std::size_t files) {
  Shape shape;
  for (std::size_t number = 0; number < files; ++number) {
    shape.paths.push_back(PathOf(number));
  }
  shape.target = PathOf(10000000) + L".locked";
  return shape;
}

struct NamedShape {
  const char* name;
  Shape (*make)(std::size_t files);  ///< Of about as many files; of fewer where the shape has no more.
};

inline constexpr std::array kShapes = {
    NamedShape{"people", People},
    NamedShape{"one_letter_and_mark", OneLetterAndMark},
    NamedShape{"one_stem", OneStem},
    NamedShape{"dotted_stems", DottedStems},
    NamedShape{"every_stem", EveryStem},
    NamedShape{"dots", Dots},
    NamedShape{"stems_inside_stems", StemsInsideStems},
    NamedShape{"keys_without_folder", KeysWithoutFolder},
    NamedShape{"one_file_a_stem", OneFileAStem},
    NamedShape{"every_part", EveryPart},
};

}  // namespace zt::bench

#endif  // ZT_BENCH_HOSTILE_NAMES_H
