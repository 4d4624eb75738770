#include "tools/replay/input/jsonl_reader.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "tools/replay/input/ascii.h"
#include "tools/replay/input/behavior_names.h"
#include "tools/replay/input/call_names.h"
#include "tools/replay/input/record_text.h"

namespace replay {
namespace {

std::uint32_t ToBehavior(const JsonValue& value) {
  const bool is_name =
      value.kind == JsonValue::Kind::kText && !value.text.empty() && value.text[0] != '-' && !IsDigit(value.text[0]);
  if (!is_name) {
    return ToUnsigned32(value);
  }
  const auto* const found = std::find_if(kNamedBehaviors.begin(), kNamedBehaviors.end(),
                                         [&](const NamedBehavior& known) { return known.name == value.text; });
  if (found == kNamedBehaviors.end()) {
    throw RowError("names the unknown behaviour " + Quoted(value.text));
  }
  return found->code;
}

// How one field of a line is stored in the call.
struct Field {
  std::string_view name;
  bool required;
  void (*store)(Call& call, const JsonValue& value, ReadCounts& counts);
};

constexpr Field kTime = {"time", true,
                         [](Call& call, const JsonValue& value, ReadCounts&) { call.record.Time = ToSigned64(value); }};
constexpr Field kRecordPid = {"pid", true,
                              [](Call& call, const JsonValue& value, ReadCounts&) { call.record.Pid = ToUnsigned64(value); }};
constexpr Field kTid = {"tid", false,
                        [](Call& call, const JsonValue& value, ReadCounts&) { call.record.Tid = ToUnsigned64(value); }};
constexpr Field kTargetPid = {
    "target_pid", false, [](Call& call, const JsonValue& value, ReadCounts&) { call.record.TargetPid = ToUnsigned64(value); }};
constexpr Field kPath = {"path", false,
                         [](Call& call, const JsonValue& value, ReadCounts&) { SetPathHead(call.record, ToText(value)); }};
constexpr Field kBehavior = {"behavior", true,
                             [](Call& call, const JsonValue& value, ReadCounts&) { call.record.Behavior = ToBehavior(value); }};
constexpr Field kTarget = {"target", false, [](Call& call, const JsonValue& value, ReadCounts& counts) {
                             if (SetTarget(call.record, ToText(value))) {
                               ++counts.targets_cut;
                             }
                           }};
constexpr Field kContext = {"context", false,
                            [](Call& call, const JsonValue& value, ReadCounts&) { call.record.Context = ToUnsigned64(value); }};
constexpr Field kScore = {"score", true,
                          [](Call& call, const JsonValue& value, ReadCounts&) { call.value = ToSigned32(value); }};
constexpr Field kValue = {"value", true,
                          [](Call& call, const JsonValue& value, ReadCounts&) { call.value = ToSigned32(value); }};
constexpr Field kPid = {"pid", true, [](Call& call, const JsonValue& value, ReadCounts&) { call.pid = ToUnsigned64(value); }};
constexpr Field kNow = {"now", true, [](Call& call, const JsonValue& value, ReadCounts&) { call.now = ToSigned64(value); }};
constexpr Field kAgeLimit = {"score_age_limit", true,
                             [](Call& call, const JsonValue& value, ReadCounts&) { call.score_age_limit = ToSigned64(value); }};

constexpr std::array kInsertLogFields = {kTime, kRecordPid, kTid, kTargetPid, kPath, kBehavior, kTarget, kContext};
constexpr std::array kLineScoreFields = {kTime, kRecordPid, kTid, kTargetPid, kPath, kBehavior, kTarget, kContext, kScore};
constexpr std::array kUpdateScoreFields = {kPid, kValue};
constexpr std::array kResetScoreFields = {kNow, kAgeLimit};
constexpr std::array kPidFields = {kPid};

struct CallForm {
  CallKind kind;
  std::span<const Field> fields;
};
constexpr std::array kCalls = {
    CallForm{CallKind::kInsertLog, kInsertLogFields},     CallForm{CallKind::kCalculateSingleLineScore, kLineScoreFields},
    CallForm{CallKind::kUpdateScore, kUpdateScoreFields}, CallForm{CallKind::kResetScore, kResetScoreFields},
    CallForm{CallKind::kGetProcTree, kPidFields},         CallForm{CallKind::kGetFinalStateFileByPid, kPidFields},
};

const CallForm& FormOf(const JsonLine& line) {
  const JsonValue* call = line.Find("call");
  if (call == nullptr) {
    return kCalls.front();
  }
  if (call->kind != JsonValue::Kind::kText) {
    throw RowError("the field \"call\" is no text");
  }
  const auto* found =
      std::find_if(kCalls.begin(), kCalls.end(), [call](const CallForm& known) { return CallName(known.kind) == call->text; });
  if (found == kCalls.end()) {
    throw RowError("unknown call " + Quoted(call->text));
  }
  return *found;
}

void Store(const JsonMember& member, const CallForm& form, Call& call, ReadCounts& counts) {
  const auto found =
      std::find_if(form.fields.begin(), form.fields.end(), [&](const Field& known) { return known.name == member.name; });
  if (found == form.fields.end()) {
    throw RowError(std::string(CallName(form.kind)) + " has no field " + Quoted(member.name));
  }
  try {
    found->store(call, member.value, counts);
  } catch (const RowError& error) {
    throw RowError("the field " + Quoted(member.name) + ": " + error.what());
  }
}

// A field that stands twice has two values, and nobody can tell which is meant.
void RejectRepeatedFields(const JsonLine& line) {
  const auto members = line.members();
  for (auto member = members.begin(); member != members.end(); ++member) {
    const auto same = [&](const JsonMember& other) { return other.name == member->name; };
    if (std::any_of(std::next(member), members.end(), same)) {
      throw RowError("the field " + Quoted(member->name) + " stands twice");
    }
  }
}

void Fill(Call& call, const JsonLine& line, ReadCounts& counts) {
  const CallForm& form = FormOf(line);
  call.kind = form.kind;
  for (const JsonMember& member : line.members()) {
    if (member.name != "call") {
      Store(member, form, call, counts);
    }
  }
  RejectRepeatedFields(line);
  for (const Field& field : form.fields) {
    if (field.required && line.Find(field.name) == nullptr) {
      throw RowError(std::string(CallName(form.kind)) + " needs the field " + Quoted(field.name));
    }
  }
}

}  // namespace

bool JsonlReader::Next(Call& call) {
  std::string_view line;
  do {
    if (!lines_.Next(line)) {
      return false;
    }
  } while (IsBlankLine(line));
  ++counts_.rows;
  call = Call{};
  call.number = lines_.number();
  try {
    json_.Parse(line);
    Fill(call, json_, counts_);
  } catch (const RowError& error) {
    lines_.Fail(error.what());
  }
  return true;
}

}  // namespace replay
