// Sequences of calls that lead files and processes through their lives.

#include <array>
#include <cstddef>
#include <utility>

#include "tests/model/random_events.h"

namespace zt::model {

void RandomEvents::StartUp() {
  // A line of six generations, and a second child in each of the first three.
  Play play;
  std::uint64_t parent = Percent(50) ? 0 : NewPid();
  for (int generation = 0; generation < 6; ++generation) {
    const std::uint64_t child = NewPid();
    play.push_back(CreateProcess(parent, child));
    if (generation < 3) {
      play.push_back(CreateProcess(parent, NewPid()));
    }
    parent = child;
  }
  Begin(std::move(play));
}

void RandomEvents::StartPlay() {
  using Maker = Play (RandomEvents::*)(std::uint64_t);
  static constexpr std::array<Maker, 27> kMakers = {
      &RandomEvents::Overwrite,         &RandomEvents::CopyAndDelete,   &RandomEvents::CopyAndDelete,
      &RandomEvents::DeleteAndWrite,    &RandomEvents::DeleteAndRename, &RandomEvents::DeleteAndCreate,
      &RandomEvents::SyncAndCopy,       &RandomEvents::SyncAndRename,   &RandomEvents::RenameAndSync,
      &RandomEvents::MoveCopies,        &RandomEvents::MoveCopies,      &RandomEvents::MoveToBareName,
      &RandomEvents::CopyOfUnreadFile,  &RandomEvents::DisguiseMany,    &RandomEvents::DisguiseMany,
      &RandomEvents::DisguiseMany,      &RandomEvents::ChargeTwice,     &RandomEvents::ParentsFile,
      &RandomEvents::RenameOntoTracked, &RandomEvents::BareNames,       &RandomEvents::ManyWrites,
      &RandomEvents::ManyWrites,        &RandomEvents::Descendants,     &RandomEvents::Circle,
      &RandomEvents::FamilyExit,        &RandomEvents::RaiseScores,     &RandomEvents::LinkAnew};
  Begin((this->*OneOf(kMakers))(ActingPid()));
}

RandomEvents::Play RandomEvents::Overwrite(std::uint64_t pid) {
  const std::wstring file = Path();
  return {OpenFile(pid, file), ReadFile(pid, file), WriteFile(pid, file)};
}

RandomEvents::Play RandomEvents::CopyAndDelete(std::uint64_t pid) {
  const std::wstring file = Path();
  const std::wstring copy = Disguised(file, habit_);
  Play play = {OpenFile(pid, file), ReadFile(pid, file)};
  if (Percent(40)) {
    play.push_back(Event(BehaviorCreateNew, pid, file, 1));
  }
  play.push_back(Event(BehaviorCreate, pid, copy, 0));
  play.push_back(WriteFile(pid, copy));
  if (Percent(30)) {
    play.push_back(WriteFile(pid, copy, 4096));
  }
  play.push_back(DeleteFile(pid, file));
  return play;
}

RandomEvents::Play RandomEvents::DeleteAndWrite(std::uint64_t pid) {
  const std::wstring file = Path();
  return {OpenFile(pid, file), ReadFile(pid, file), DeleteFile(pid, file), WriteFile(pid, Disguised(file, habit_))};
}

RandomEvents::Play RandomEvents::DeleteAndRename(std::uint64_t pid) {
  const std::wstring file = Path();
  const std::wstring other = Percent(50) ? Path() : OpenedPath(pid);
  return {OpenFile(pid, file), ReadFile(pid, file), DeleteFile(pid, file),
          RenameFile(pid, other, Percent(80) ? Disguised(file, habit_) : file), RenameFile(pid, file, Path())};
}

RandomEvents::Play RandomEvents::DeleteAndCreate(std::uint64_t pid) {
  const std::wstring file = Path();
  return {OpenFile(pid, file), ReadFile(pid, file), DeleteFile(pid, file),
          Event(BehaviorCreate, pid, file, Percent(70) ? 0 : 1), WriteFile(pid, file)};
}

RandomEvents::Play RandomEvents::SyncAndCopy(std::uint64_t pid) {
  const std::wstring file = Path();
  Play play = {OpenFile(pid, file)};
  if (Percent(50)) {
    play.push_back(ReadFile(pid, file));
  }
  play.push_back(SyncFile(pid, file));
  play.push_back(WriteFile(pid, Percent(80) ? Disguised(file, habit_) : file));
  return play;
}

RandomEvents::Play RandomEvents::SyncAndRename(std::uint64_t pid) {
  const std::wstring file = Path();
  const std::wstring destination = Percent(50) ? Path() : Disguised(file, habit_);
  return {OpenFile(pid, file), SyncFile(pid, file), RenameFile(pid, Percent(80) ? file : OpenedPath(pid), destination)};
}

RandomEvents::Play RandomEvents::RenameAndSync(std::uint64_t pid) {
  const std::wstring file = Path();
  const std::wstring destination = Path();
  Play play = {OpenFile(pid, file)};
  if (Percent(50)) {
    play.push_back(ReadFile(pid, file));
  }
  play.push_back(RenameFile(pid, file, destination));
  play.push_back(SyncFile(pid, destination));
  play.push_back(SyncFile(pid, file));
  return play;
}

RandomEvents::Play RandomEvents::MoveCopies(std::uint64_t pid) {
  const std::wstring folder = Folder();
  const std::wstring destination = Folder();
  Play play;
  for (int i = 0; i < 3; ++i) {
    const std::wstring name = Name();
    const std::wstring file = folder + name;
    // Writing before reading marks the file and leaves it open for the step to the read state.
    play.push_back(OpenFile(pid, file));
    play.push_back(WriteFile(pid, file));
    play.push_back(ReadFile(pid, file));
    play.push_back(WriteFile(pid, Disguised(file, habit_), 0));
    play.push_back(RenameFile(pid, file, destination + (Percent(50) ? name : Name())));
  }
  return play;
}

RandomEvents::Play RandomEvents::MoveToBareName(std::uint64_t pid) {
  const std::wstring file = Name();
  const std::wstring copy = file + L".enc";
  return {OpenFile(pid, file), WriteFile(pid, file), ReadFile(pid, file), WriteFile(pid, copy, 0),
          Percent(50) ? RenameFile(pid, file, L"zz") : RenameFile(pid, Path(), copy)};
}

RandomEvents::Play RandomEvents::CopyOfUnreadFile(std::uint64_t pid) {
  const std::wstring file = Path();
  Play play = {Event(Percent(50) ? BehaviorCreateNew : BehaviorCreate, pid, file, 1)};
  if (Percent(30)) {
    play.push_back(Event(BehaviorCreate, pid, file, 0));
  }
  play.push_back(WriteFile(pid, Disguised(file, habit_), 0));
  play.push_back(DeleteFile(pid, file));
  return play;
}

RandomEvents::Play RandomEvents::DisguiseMany(std::uint64_t pid) {
  static const std::vector<std::wstring> kNames = {L"ab.doc", L"cd.doc", L"report.doc", L"photo.txt", L"ef.a.b", L"g"};
  const std::wstring folder = Folder();
  const Disguise disguise = Percent(50) ? habit_ : RandomDisguise();
  Play play;
  for (int i = 0; i < 3; ++i) {
    const std::wstring file = folder + (Percent(60) ? OneOf(kNames) : Name());
    play.push_back(OpenFile(pid, file));
    play.push_back(ReadFile(pid, file));
    const std::wstring copy = Disguised(file, disguise);
    play.push_back(Percent(50) ? WriteFile(pid, copy, 0) : RenameFile(pid, Percent(50) ? file : Path(), copy));
    if (Percent(30)) {
      play.push_back(DeleteFile(pid, file));
    }
  }
  return play;
}

RandomEvents::Play RandomEvents::ChargeTwice(std::uint64_t pid) {
  // The renamed copy is charged under the first name.
  const std::wstring file = L"C:\\once\\" + Name();
  const std::wstring moved = L"C:\\twice\\" + Name();
  return {OpenFile(pid, file), ReadFile(pid, file), RenameFile(pid, file, moved), WriteFile(pid, file, 0),
          WriteFile(pid, moved, 0)};
}

RandomEvents::Play RandomEvents::ParentsFile(std::uint64_t pid) {
  const std::wstring file = Path();
  const std::uint64_t child = NewPid();
  return {OpenFile(pid, file), ReadFile(pid, file), CreateProcess(pid, child), WriteFile(child, file, 0)};
}

RandomEvents::Play RandomEvents::RenameOntoTracked(std::uint64_t pid) {
  const std::wstring file = OpenedPath(pid);
  const std::wstring other = Percent(80) ? OpenedPath(pid) : file;
  return {OpenFile(pid, file), RenameFile(pid, file, other), WriteFile(pid, other), DeleteFile(pid, other)};
}

RandomEvents::Play RandomEvents::BareNames(std::uint64_t pid) {
  static const std::vector<std::wstring> kDestinations = {L"", L"b.doc", L"a.doc", L"x", L"zz", L"|", L"\\", L"a|b", L"x\\x"};
  const std::wstring file = Percent(50) ? Name() : OpenedPath(pid);
  const std::wstring destination = OneOf(kDestinations);
  return {OpenFile(pid, file), RenameFile(pid, file, destination), WriteFile(pid, destination), OpenFile(pid, L"x\\x"),
          WriteFile(pid, L"x", 0)};
}

RandomEvents::Play RandomEvents::ManyWrites(std::uint64_t pid) {
  const std::wstring file = OpenedPath(pid);
  const std::wstring copy = Disguised(file, habit_);
  Play play = {OpenFile(pid, file), ReadFile(pid, file)};
  for (int i = 0; i < 4; ++i) {
    play.push_back(WriteFile(pid, Percent(60) ? copy : file, Position()));
  }
  return play;
}

RandomEvents::Play RandomEvents::Descendants(std::uint64_t pid) {
  const std::uint64_t child = NewPid();
  const std::uint64_t sibling = NewPid();
  const std::uint64_t grandchild = NewPid();
  Play play = {CreateProcess(pid, child), CreateProcess(pid, sibling), CreateProcess(child, grandchild)};
  // Two of them charge their ancestors for the same file.
  const std::wstring file = Path();
  for (const std::uint64_t writer : {grandchild, sibling}) {
    play.push_back(OpenFile(writer, file));
    play.push_back(ReadFile(writer, file));
    play.push_back(WriteFile(writer, file, 0));
  }
  play.push_back(Query(grandchild));
  return play;
}

RandomEvents::Play RandomEvents::Circle(std::uint64_t pid) {
  // The same start time again: first a child, and then that child creates its creator, or a process creates itself.
  const std::uint64_t child = NewPid();
  Call forth = CreateProcess(child, pid);
  Call back = CreateProcess(pid, child);
  Call itself = CreateProcess(pid, pid);
  const std::int64_t time = Percent(50) ? 0 : OneOf(std::array<std::int64_t, 3>{7, 8, clock_});
  forth.log.Time = time;
  back.log.Time = time;
  itself.log.Time = time;
  if (!Percent(20)) {
    return {itself};
  }
  return {itself, Percent(50) ? itself : back, forth, Percent(50) ? back : itself, Query(pid), Query(child)};
}

RandomEvents::Play RandomEvents::LinkAnew(std::uint64_t pid) {
  // The second creation of `upper` sets its count anew; then its child leaves it for another parent, and it exits.
  const std::uint64_t upper = NewPid();
  const std::uint64_t lower = NewPid();
  const Call create_upper = CreateProcess(pid, upper);
  const Call create_lower = CreateProcess(upper, lower);
  Call leave = CreateProcess(Percent(50) ? lower : pid, lower);
  leave.log.Time = create_lower.log.Time;
  return {create_upper, create_lower, create_upper, leave, ExitProcess(upper), Reset(), Reset(), Query(lower)};
}

RandomEvents::Play RandomEvents::FamilyExit(std::uint64_t pid) {
  const std::uint64_t child = NewPid();
  Play play = {CreateProcess(pid, child), ExitProcess(child)};
  if (Percent(30)) {
    play.push_back(ExitProcess(child));
  }
  if (Percent(40)) {
    play.push_back(ExitProcess(pid));
  }
  play.push_back(Reset());
  play.push_back(Reset());
  if (Percent(50)) {
    play.push_back(CreateProcess(KnownPid(), child));
  }
  return play;
}

RandomEvents::Play RandomEvents::RaiseScores(std::uint64_t pid) {
  Play play;
  for (int i = 0; i < 3; ++i) {
    play.push_back(Event(BehaviorModuleLoad, pid, ModulePath(), 0));
  }
  if (Percent(50)) {
    play.push_back(SetScore(KnownPid()));
  }
  return play;
}

}  // namespace zt::model
