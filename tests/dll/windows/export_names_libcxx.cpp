// As clang forms them with LLVM's C++ library, where a long has 32 bits and is the ZtLong.

#include "tests/dll/export_names.h"

namespace zt::testing {

std::vector<std::string> ExportNames() {
  return {
      // unsigned char ZtInitEngineCore(std::shared_ptr<void>&, std::uint32_t)
      "_Z16ZtInitEngineCoreRNSt3__110shared_ptrIvEEj",
      // void ZtCleanupEngineCore(std::shared_ptr<void>&)
      "_Z19ZtCleanupEngineCoreRNSt3__110shared_ptrIvEE",
      // ZtLong ZtInsertLog(std::shared_ptr<void>&, LOG_ITEM*)
      "_Z11ZtInsertLogRNSt3__110shared_ptrIvEEP9_LOG_ITEM",
      // ZtLong ZtCalculateSingleLineScore(std::shared_ptr<void>&, LOG_ITEM*, ZtLong)
      "_Z26ZtCalculateSingleLineScoreRNSt3__110shared_ptrIvEEP9_LOG_ITEMl",
      // void ZtUpdateScore(std::shared_ptr<void>&, void*, ZtLong)
      "_Z13ZtUpdateScoreRNSt3__110shared_ptrIvEEPvl",
      // std::vector<void*> ZtGetProcTree(std::shared_ptr<void>&, void*)
      "_Z13ZtGetProcTreeRNSt3__110shared_ptrIvEEPv",
      // void ZtGetProcTree(std::shared_ptr<void>&, void*, std::map<void*, std::wstring>&)
      "_Z13ZtGetProcTreeRNSt3__110shared_ptrIvEEPvRNS_3mapIS3_NS_12basic_stringIwNS_11char_traitsIwEENS_9allocatorIwEEE"
      "ENS_4lessIS3_EENS8_INS_4pairIKS3_SA_EEEEEE",
      // std::map<std::wstring, _ZT_FILE_ITEM>::iterator ZtSearchSimilarFile(std::shared_ptr<_ZtEngineCore>&, _ZT_PID_ITEM&,
      //     std::map<std::wstring, _ZT_FILE_ITEM>&, std::wstring)
      "_Z19ZtSearchSimilarFileRNSt3__110shared_ptrI13_ZtEngineCoreEER12_ZT_PID_ITEMRNS_3mapINS_12basic_stringIwNS_11cha"
      "r_traitsIwEENS_9allocatorIwEEEE13_ZT_FILE_ITEMNS_4lessISC_EENSA_INS_4pairIKSC_SD_EEEEEESC_",
      // void ZtResetScore(std::shared_ptr<void>&, std::int64_t, std::int64_t)
      "_Z12ZtResetScoreRNSt3__110shared_ptrIvEExx",
      // unsigned char ZtGetFinalStateFileByPid(std::shared_ptr<void>&, void*, std::map<std::wstring, ZT_FILE_ITEM_PUBLIC>&,
      //     std::vector<std::wstring>&)
      "_Z24ZtGetFinalStateFileByPidRNSt3__110shared_ptrIvEEPvRNS_3mapINS_12basic_stringIwNS_11char_traitsIwEENS_9alloca"
      "torIwEEEE19ZT_FILE_ITEM_PUBLICNS_4lessISA_EENS8_INS_4pairIKSA_SB_EEEEEERNS_6vectorISA_NS8_ISA_EEEE",
  };
}

}  // namespace zt::testing
