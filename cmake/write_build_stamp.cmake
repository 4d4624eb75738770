# cmake -DOUTPUT=FILE -P write_build_stamp.cmake: writes a header that tells the time, or the moment of SOURCE_DATE_EPOCH.
string(TIMESTAMP stamp "%a %b %d %H:%M:%S %Y" UTC)
file(WRITE ${OUTPUT} "constexpr char kBuildStampText[] = \"${stamp}\";\n")
