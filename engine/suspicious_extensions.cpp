#include "engine/suspicious_extensions.h"

namespace zt {

// clang-format off
constinit const std::array<std::wstring_view, 342> SuspiciousExtensions = {
    L"1cd", L"3ds", L"3fr", L"3g2", L"3gp", L"7z", L"accda", L"accdb", L"accdc", L"accde", L"accdt", L"accdw", L"adb", L"adp",
    L"ai", L"ai3", L"ai4", L"ai5", L"ai6", L"ai7", L"ai8", L"anim", L"arw", L"as", L"asa", L"asc", L"ascx", L"asm", L"asmx",
    L"asp", L"aspx", L"asr", L"asx", L"avi", L"avs", L"backup", L"bak", L"bay", L"bd", L"bin", L"bmp", L"bz2", L"c", L"cdr",
    L"cer", L"cf", L"cfc", L"cfm", L"cfml", L"cfu", L"chm", L"cin", L"class", L"clx", L"config", L"cpp", L"cr2", L"crt",
    L"crw", L"cs", L"css", L"csv", L"cub", L"dae", L"dat", L"db", L"dbf", L"dbx", L"dc3", L"dcm", L"dcr", L"der", L"dib",
    L"dic", L"dif", L"divx", L"djvu", L"dng", L"doc", L"docm", L"docx", L"dot", L"dotm", L"dotx", L"dpx", L"dqy", L"dsn",
    L"dt", L"dtd", L"dwg", L"dwt", L"dx", L"dxf", L"edml", L"efd", L"elf", L"emf", L"emz", L"epf", L"eps", L"epsf", L"epsp",
    L"erf", L"exr", L"f4v", L"fido", L"flm", L"flv", L"frm", L"fxg", L"geo", L"gif", L"grs", L"gz", L"h", L"hdr", L"hpp",
    L"hta", L"htc", L"htm", L"html", L"icb", L"ics", L"iff", L"inc", L"indd", L"ini", L"iqy", L"j2c", L"j2k", L"java", L"jp2",
    L"jpc", L"jpe", L"jpeg", L"jpf", L"jpg", L"jpx", L"js", L"jsf", L"json", L"jsp", L"kdc", L"kmz", L"kwm", L"lasso", L"lbi",
    L"lgf", L"lgp", L"log", L"m1v", L"m4a", L"m4v", L"max", L"md", L"mda", L"mdb", L"mde", L"mdf", L"mdw", L"mef", L"mft",
    L"mfw", L"mht", L"mhtml", L"mka", L"mkidx", L"mkv", L"mos", L"mov", L"mp3", L"mp4", L"mpeg", L"mpg", L"mpv", L"mrw",
    L"msg", L"mxl", L"myd", L"myi", L"nef", L"nrw", L"obj", L"odb", L"odc", L"odm", L"odp", L"ods", L"oft", L"one", L"onepkg",
    L"onetoc2", L"opt", L"oqy", L"orf", L"p12", L"p7b", L"p7c", L"pam", L"pbm", L"pct", L"pcx", L"pdd", L"pdf", L"pdp",
    L"pef", L"pem", L"pff", L"pfm", L"pfx", L"pgm", L"php", L"php3", L"php4", L"php5", L"phtml", L"pict", L"pl", L"pls",
    L"pm", L"png", L"pnm", L"pot", L"potm", L"potx", L"ppa", L"ppam", L"ppm", L"pps", L"ppsm", L"ppt", L"pptm", L"pptx",
    L"prn", L"ps", L"psb", L"psd", L"pst", L"ptx", L"pub", L"pwm", L"pxr", L"py", L"qt", L"r3d", L"raf", L"rar", L"raw",
    L"rdf", L"rgbe", L"rle", L"rqy", L"rss", L"rtf", L"rw2", L"rwl", L"safe", L"sct", L"sdpx", L"shtm", L"shtml", L"slk",
    L"sln", L"sql", L"sr2", L"srf", L"srw", L"ssi", L"st", L"stm", L"svg", L"svgz", L"swf", L"tab", L"tar", L"tbb", L"tbi",
    L"tbk", L"tdi", L"tga", L"thmx", L"tif", L"tiff", L"tld", L"torrent", L"tpl", L"txt", L"u3d", L"udl", L"uxdc", L"vb",
    L"vbs", L"vcs", L"vda", L"vdr", L"vdw", L"vdx", L"vrp", L"vsd", L"vss", L"vst", L"vsw", L"vsx", L"vtm", L"vtml", L"vtx",
    L"wb2", L"wav", L"wbm", L"wbmp", L"wim", L"wmf", L"wml", L"wmv", L"wpd", L"wps", L"x3f", L"xl", L"xla", L"xlam", L"xlk",
    L"xlm", L"xls", L"xlsb", L"xlsm", L"xlsx", L"xlt", L"xltm", L"xltx", L"xlw", L"xml", L"xps", L"xsd", L"xsf", L"xsl",
    L"xslt", L"xsn", L"xtp", L"xtp2", L"xyze", L"xz", L"zip",
};
// clang-format on

}  // namespace zt
