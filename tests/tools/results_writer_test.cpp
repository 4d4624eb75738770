#include "tools/replay/results_writer.h"

#include <gtest/gtest.h>

#include "tests/tools/calls.h"
#include "tools/replay/handles.h"

namespace replay {
namespace {

class ResultsWriterTest : public ::testing::Test {
 protected:
  testing::Sink sink_;
  ResultsWriter writer_{sink_.Take()};
};

TEST_F(ResultsWriterTest, WritesScores) {
  writer_.InsertLog(1, 0);
  writer_.InsertLog(2, 2147483647);
  writer_.SingleLineScore(18446744073709551615U, -2147483647 - 1);
  EXPECT_EQ(sink_.text,
            "{\"line\":1,\"call\":\"ZtInsertLog\",\"result\":0}\n"
            "{\"line\":2,\"call\":\"ZtInsertLog\",\"result\":2147483647}\n"
            "{\"line\":18446744073709551615,\"call\":\"ZtCalculateSingleLineScore\",\"score\":-2147483648}\n");
}

TEST_F(ResultsWriterTest, WritesCallsWithoutResult) {
  writer_.UpdateScore(3);
  writer_.ResetScore(4);
  EXPECT_EQ(sink_.text, "{\"line\":3,\"call\":\"ZtUpdateScore\"}\n{\"line\":4,\"call\":\"ZtResetScore\"}\n");
}

TEST_F(ResultsWriterTest, SortsTheFamilyByNumber) {
  writer_.ProcTree(5, {HandleFromPid(100), HandleFromPid(9), HandleFromPid(18446744073709551615U)},
                   {{HandleFromPid(100), L"C:\\a.exe"}, {HandleFromPid(9), L""}});
  EXPECT_EQ(sink_.text,
            "{\"line\":5,\"call\":\"ZtGetProcTree\",\"pids\":[9,100,18446744073709551615],"
            "\"procs\":{\"9\":\"\",\"100\":\"C:\\\\a.exe\"}}\n");
}

TEST_F(ResultsWriterTest, WritesAnEmptyFamily) {
  writer_.ProcTree(6, {}, {});
  EXPECT_EQ(sink_.text, "{\"line\":6,\"call\":\"ZtGetProcTree\",\"pids\":[],\"procs\":{}}\n");
}

TEST_F(ResultsWriterTest, WritesFilesInKeyOrderAndPathsInTheirs) {
  ZT_FILE_ITEM_PUBLIC first;
  first.EngineId = 4294967295;
  first.Path = L"C:\\A";
  first.Restore = 1;
  first.Context = 18446744073709551615U;
  ZT_FILE_ITEM_PUBLIC second;
  second.EngineId = 7;
  second.Path = L"C:\\B";
  writer_.FinalState(7, 1, {{L"c:\\b", second}, {L"c:\\a", first}}, {L"z", L"y"});
  EXPECT_EQ(sink_.text,
            "{\"line\":7,\"call\":\"ZtGetFinalStateFileByPid\",\"result\":1,\"files\":{"
            "\"c:\\\\a\":{\"engine_id\":4294967295,\"path\":\"C:\\\\A\",\"restore\":true,\"context\":18446744073709551615},"
            "\"c:\\\\b\":{\"engine_id\":7,\"path\":\"C:\\\\B\",\"restore\":false,\"context\":0}},"
            "\"paths\":[\"z\",\"y\"]}\n");
}

TEST_F(ResultsWriterTest, WritesAnEmptyFinalState) {
  writer_.FinalState(8, 1, {}, {});
  EXPECT_EQ(sink_.text, "{\"line\":8,\"call\":\"ZtGetFinalStateFileByPid\",\"result\":1,\"files\":{},\"paths\":[]}\n");
}

TEST_F(ResultsWriterTest, ReplacesLoneSurrogatesAndKeepsOtherText) {
  writer_.FinalState(9, 1, {}, {std::wstring{L'a', 0xD800}, L"\u00E9"});
  EXPECT_EQ(sink_.text,
            "{\"line\":9,\"call\":\"ZtGetFinalStateFileByPid\",\"result\":1,\"files\":{},"
            "\"paths\":[\"a\xEF\xBF\xBD\",\"\xC3\xA9\"]}\n");
}

}  // namespace
}  // namespace replay
