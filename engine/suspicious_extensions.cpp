#include "engine/suspicious_extensions.h"

namespace zt {

// clang-format off
constinit const std::array<std::u16string_view, 342> SuspiciousExtensions = {
    u"1cd", u"3ds", u"3fr", u"3g2", u"3gp", u"7z", u"accda", u"accdb", u"accdc", u"accde", u"accdt", u"accdw", u"adb", u"adp",
    u"ai", u"ai3", u"ai4", u"ai5", u"ai6", u"ai7", u"ai8", u"anim", u"arw", u"as", u"asa", u"asc", u"ascx", u"asm", u"asmx",
    u"asp", u"aspx", u"asr", u"asx", u"avi", u"avs", u"backup", u"bak", u"bay", u"bd", u"bin", u"bmp", u"bz2", u"c", u"cdr",
    u"cer", u"cf", u"cfc", u"cfm", u"cfml", u"cfu", u"chm", u"cin", u"class", u"clx", u"config", u"cpp", u"cr2", u"crt",
    u"crw", u"cs", u"css", u"csv", u"cub", u"dae", u"dat", u"db", u"dbf", u"dbx", u"dc3", u"dcm", u"dcr", u"der", u"dib",
    u"dic", u"dif", u"divx", u"djvu", u"dng", u"doc", u"docm", u"docx", u"dot", u"dotm", u"dotx", u"dpx", u"dqy", u"dsn",
    u"dt", u"dtd", u"dwg", u"dwt", u"dx", u"dxf", u"edml", u"efd", u"elf", u"emf", u"emz", u"epf", u"eps", u"epsf", u"epsp",
    u"erf", u"exr", u"f4v", u"fido", u"flm", u"flv", u"frm", u"fxg", u"geo", u"gif", u"grs", u"gz", u"h", u"hdr", u"hpp",
    u"hta", u"htc", u"htm", u"html", u"icb", u"ics", u"iff", u"inc", u"indd", u"ini", u"iqy", u"j2c", u"j2k", u"java", u"jp2",
    u"jpc", u"jpe", u"jpeg", u"jpf", u"jpg", u"jpx", u"js", u"jsf", u"json", u"jsp", u"kdc", u"kmz", u"kwm", u"lasso", u"lbi",
    u"lgf", u"lgp", u"log", u"m1v", u"m4a", u"m4v", u"max", u"md", u"mda", u"mdb", u"mde", u"mdf", u"mdw", u"mef", u"mft",
    u"mfw", u"mht", u"mhtml", u"mka", u"mkidx", u"mkv", u"mos", u"mov", u"mp3", u"mp4", u"mpeg", u"mpg", u"mpv", u"mrw",
    u"msg", u"mxl", u"myd", u"myi", u"nef", u"nrw", u"obj", u"odb", u"odc", u"odm", u"odp", u"ods", u"oft", u"one", u"onepkg",
    u"onetoc2", u"opt", u"oqy", u"orf", u"p12", u"p7b", u"p7c", u"pam", u"pbm", u"pct", u"pcx", u"pdd", u"pdf", u"pdp",
    u"pef", u"pem", u"pff", u"pfm", u"pfx", u"pgm", u"php", u"php3", u"php4", u"php5", u"phtml", u"pict", u"pl", u"pls",
    u"pm", u"png", u"pnm", u"pot", u"potm", u"potx", u"ppa", u"ppam", u"ppm", u"pps", u"ppsm", u"ppt", u"pptm", u"pptx",
    u"prn", u"ps", u"psb", u"psd", u"pst", u"ptx", u"pub", u"pwm", u"pxr", u"py", u"qt", u"r3d", u"raf", u"rar", u"raw",
    u"rdf", u"rgbe", u"rle", u"rqy", u"rss", u"rtf", u"rw2", u"rwl", u"safe", u"sct", u"sdpx", u"shtm", u"shtml", u"slk",
    u"sln", u"sql", u"sr2", u"srf", u"srw", u"ssi", u"st", u"stm", u"svg", u"svgz", u"swf", u"tab", u"tar", u"tbb", u"tbi",
    u"tbk", u"tdi", u"tga", u"thmx", u"tif", u"tiff", u"tld", u"torrent", u"tpl", u"txt", u"u3d", u"udl", u"uxdc", u"vb",
    u"vbs", u"vcs", u"vda", u"vdr", u"vdw", u"vdx", u"vrp", u"vsd", u"vss", u"vst", u"vsw", u"vsx", u"vtm", u"vtml", u"vtx",
    u"wb2", u"wav", u"wbm", u"wbmp", u"wim", u"wmf", u"wml", u"wmv", u"wpd", u"wps", u"x3f", u"xl", u"xla", u"xlam", u"xlk",
    u"xlm", u"xls", u"xlsb", u"xlsm", u"xlsx", u"xlt", u"xltm", u"xltx", u"xlw", u"xml", u"xps", u"xsd", u"xsf", u"xsl",
    u"xslt", u"xsn", u"xtp", u"xtp2", u"xyze", u"xz", u"zip",
};
// clang-format on

}  // namespace zt
