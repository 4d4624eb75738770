// As GCC and clang form them with the GNU C++ library, where a long has 64 bits and a 32-bit ZtLong is an int.

#include "tests/dll/export_names.h"

namespace zt::testing {

std::vector<std::string> ExportNames() {
  return {
      // unsigned char ZtInitEngineCore(std::shared_ptr<void>&, std::uint32_t)
      "_Z16ZtInitEngineCoreRSt10shared_ptrIvEj",
      // void ZtCleanupEngineCore(std::shared_ptr<void>&)
      "_Z19ZtCleanupEngineCoreRSt10shared_ptrIvE",
      // ZtLong ZtInsertLog(std::shared_ptr<void>&, LOG_ITEM*)
      "_Z11ZtInsertLogRSt10shared_ptrIvEP9_LOG_ITEM",
      // ZtLong ZtCalculateSingleLineScore(std::shared_ptr<void>&, LOG_ITEM*, ZtLong)
      "_Z26ZtCalculateSingleLineScoreRSt10shared_ptrIvEP9_LOG_ITEMi",
      // void ZtUpdateScore(std::shared_ptr<void>&, void*, ZtLong)
      "_Z13ZtUpdateScoreRSt10shared_ptrIvEPvi",
      // std::vector<void*> ZtGetProcTree(std::shared_ptr<void>&, void*)
      "_Z13ZtGetProcTreeRSt10shared_ptrIvEPv",
      // void ZtGetProcTree(std::shared_ptr<void>&, void*, std::map<void*, std::wstring>&)
      "_Z13ZtGetProcTreeRSt10shared_ptrIvEPvRSt3mapIS2_NSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEESt4lessIS2_E"
      "SaISt4pairIKS2_S9_EEE",
      // std::map<std::wstring, _ZT_FILE_ITEM>::iterator ZtSearchSimilarFile(std::shared_ptr<_ZtEngineCore>&, _ZT_PID_ITEM&,
      //     std::map<std::wstring, _ZT_FILE_ITEM>&, std::wstring)
      "_Z19ZtSearchSimilarFileRSt10shared_ptrI13_ZtEngineCoreER12_ZT_PID_ITEMRSt3mapINSt7__cxx1112basic_stringIwSt11cha"
      "r_traitsIwESaIwEEE13_ZT_FILE_ITEMSt4lessISB_ESaISt4pairIKSB_SC_EEESB_",
      // void ZtResetScore(std::shared_ptr<void>&, std::int64_t, std::int64_t)
      "_Z12ZtResetScoreRSt10shared_ptrIvEll",
      // unsigned char ZtGetFinalStateFileByPid(std::shared_ptr<void>&, void*, std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>&,
      //     std::vector<std::wstring>&)
      "_Z24ZtGetFinalStateFileByPidRSt10shared_ptrIvEPvRSt3mapINSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEE19ZT"
      "_FILE_ITEM_PUBLICSt4lessIS9_ESaISt4pairIKS9_SA_EEERSt6vectorIS9_SaIS9_EE",
  };
}

}  // namespace zt::testing
