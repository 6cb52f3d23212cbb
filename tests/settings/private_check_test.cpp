/* The private check against its rules, written down as data: what each poke into a good record leads to. */
#include "settings/check_support.h"

namespace {

/* Fields that are bad at 0x7777 and cost one repair each. */
const std::vector<size_t> aFillers = {1802, 1810, 384, 386, 1800};

constexpr i64 FILE_END = 5000; /* of the font file */
constexpr i64 COLOR_END = 200; /* of the colour data */

constexpr CheckRow aIdentity[] = {
    {"nothing", {}, KEPT, {}},
    {"stamp", {{220, 4, 0xCACA0002}}, REFUSED, {}},
    {"overlay folder's offset", {{1798, 2, 331}}, REFUSED, {}},
    {"colour commands' offset", {{1942, 2, 661}}, REFUSED, {}},
    {"exception region", {{1886, 2, 940}}, KEPT, {}},
    {"inserted pages taken back", {{1886, 2, -940}}, KEPT, {}},
    {"exception region elsewhere", {{1886, 2, 941}}, REFUSED, {}},
    {"offset of the own block", {{2044, 4, 1745}}, REFUSED, {}},
    {"size of the own block", {{2048, 4, 305}}, REFUSED, {}},
    {"version of the own block is not looked at", {{2040, 4, 7}}, KEPT, {}},
    {"description's path without its end", {{2370, 2, 'X'}}, REFUSED, {}},
    {"overlay folder without its end", {{2690, 2, 'X'}}, REFUSED, {}},
    {"overlay folder", {{2372, 8, 0x005C003A0043}}, KEPT, {}},
};

constexpr CheckRow aFontRows[] = {
    {"font offset at the file's end", {{228, 4, FILE_END}, {224, 4, 2}}, KEPT, {}},
    {"font offset behind it", {{228, 4, FILE_END + 1}, {224, 4, 2}}, MENDED, {{224, 4, 0}, {228, 4, 0}}},
    {"font offset of all bits", {{228, 4, -1}}, MENDED, {{228, 4, 0}}},
    {"bitmap fonts", {{1812, 2, 32767}}, KEPT, {}},
    {"bitmap fonts 1", {{1812, 2, 1}}, MENDED, {{1812, 2, 0}}},
    {"fonts reported", {{1880, 2, 0}}, KEPT, {}},
    {"fonts reported 2", {{1880, 2, 2}}, MENDED, {{1880, 2, 0}}},
    {"font count of the model", {{224, 4, 2}}, KEPT, {}},
    {"font count by its low half", {{224, 4, 0x00010002}}, KEPT, {}},
    {"another font count", {{224, 4, 5}}, MENDED, {{224, 4, 2}}},
    {"font count 0 in the low half", {{224, 4, 0x00010000}}, MENDED, {{224, 4, 2}}},
    {"halftone", {{364, 4, 1}}, MENDED, {{364, 4, 0}}},
    {"halftone offset", {{368, 4, 1}}, MENDED, {{368, 4, 0}}},
    {"halftone cell", {{372, 4, 8}}, MENDED, {{372, 4, 0}}},
    {"memory", {{376, 4, 1}}, MENDED, {{376, 4, 0}}},
};

/* Kind 1, class 0: the one model with halftones. */
constexpr CheckRow aHalftoneRows[] = {
    {"halftone 4", {{364, 4, 4}}, KEPT, {}},
    {"halftone 5", {{364, 4, 5}}, MENDED, {{364, 4, 0}}},
    {"offset at the file's end", {{364, 4, 1}, {368, 4, FILE_END}}, KEPT, {}},
    {"offset behind it", {{364, 4, 1}, {368, 4, FILE_END + 1}}, MENDED, {{364, 4, 0}, {368, 4, 0}}},
    {"cell 8", {{372, 4, 8}}, KEPT, {}},
    {"cell 16", {{372, 4, 16}}, KEPT, {}},
    {"cell 32", {{372, 4, 32}}, KEPT, {}},
    {"cell 9", {{364, 4, 1}, {372, 4, 9}}, MENDED, {{364, 4, 0}, {372, 4, 0}}},
};

constexpr CheckRow aLayoutRows[] = {
    {"turned", {{384, 2, 1}}, KEPT, {}},
    {"turned 2", {{384, 2, 2}}, MENDED, {{384, 2, 0}}},
    {"collated", {{386, 2, 1}}, KEPT, {}},
    {"collated 2", {{386, 2, 2}}, MENDED, {{386, 2, 0}}},
    {"no scaling, whatever its target", {{388, 2, 0}, {390, 2, 7777}}, KEPT, {}},
    {"fit, to the job's paper", {{388, 2, 1}, {390, 2, 0xFFFF}}, KEPT, {}},
    {"fit, to paper 0", {{388, 2, 1}, {390, 2, 0}}, MENDED, {{388, 2, 0}}},
    {"scale 3", {{388, 2, 3}, {390, 2, 0xFFFF}}, MENDED, {{388, 2, 0}}},
    {"scale 65", {{388, 2, 65}, {390, 2, 0xFFFF}}, MENDED, {{388, 2, 0}}},
    {"zoom 20", {{388, 2, 2}, {390, 2, 20}}, KEPT, {}},
    {"zoom 500", {{388, 2, 2}, {390, 2, 500}}, KEPT, {}},
    {"zoom 19", {{388, 2, 2}, {390, 2, 19}}, MENDED, {{388, 2, 0}}},
    {"zoom 501", {{388, 2, 66}, {390, 2, 501}}, MENDED, {{388, 2, 0}}},
    {"zoom of the job's paper", {{388, 2, 66}, {390, 2, 0xFFFF}}, MENDED, {{388, 2, 0}}},
    {"centred zoom", {{388, 2, 66}, {390, 2, 150}}, KEPT, {}},
    {"on the job's paper", {{388, 2, 4}, {390, 2, 0xFFFF}}, KEPT, {}},
    {"on a paper that is none", {{388, 2, 4}, {390, 2, 200}, {392, 4, 0x08340B9A}}, MENDED, {{388, 2, 0}}},
    {"on a paper with a size", {{388, 2, 4}, {390, 2, 9}, {392, 2, 2970}, {394, 2, 2100}}, KEPT, {}},
    {"on a model's own paper", {{388, 2, 4}, {390, 2, 256}, {392, 2, 12000}, {394, 2, 762}}, KEPT, {}},
    {"companion paper without a size", {{388, 2, 33}, {390, 2, 9}}, MENDED, {{388, 2, 0}}},
    {"companion paper too long",
     {{388, 2, 33}, {390, 2, 9}, {392, 2, 12001}, {394, 2, 2100}},
     MENDED,
     {{388, 2, 0}}},
    {"companion paper too narrow",
     {{388, 2, 33}, {390, 2, 9}, {392, 2, 2970}, {394, 2, 761}},
     MENDED,
     {{388, 2, 0}}},
    {"centred on a paper", {{388, 2, 68}, {390, 2, 118}, {392, 2, 1270}, {394, 2, 3112}}, KEPT, {}},
    {"kept mode, paper above the sign",
     {{388, 2, 1024}, {390, 2, 0x8000}, {392, 2, 2970}, {394, 2, 2100}},
     MENDED,
     {{388, 2, 0}}},
    {"kept mode", {{388, 2, 1024}, {390, 2, 0xFFFF}}, KEPT, {}},
    {"kept mode on a paper that is none", {{388, 2, 1024}, {390, 2, 200}}, MENDED, {{388, 2, 0}}},
    {"booklet of any count", {{396, 2, 32767}}, KEPT, {}},
    {"booklet of less than none", {{396, 2, 0x8000}}, MENDED, {{396, 2, 0}}},
    {"1 page keeps its borders", {{398, 2, 9}, {1808, 2, 0xFFFF}, {1882, 2, -1}, {1968, 2, -1}}, KEPT, {}},
    {"3 pages, so 1, so no look at the borders", {{400, 4, 3}, {398, 2, 9}}, MENDED, {{400, 4, 1}}},
    {"0 pages", {{400, 4, 0}}, MENDED, {{400, 4, 1}}},
    {"less than no pages", {{400, 4, -4}}, MENDED, {{400, 4, 1}}},
    {"65540 pages", {{400, 4, 0x10004}}, MENDED, {{400, 4, 1}}},
    {"2 pages", {{400, 4, 2}}, KEPT, {}},
    {"6 pages", {{400, 4, 6}}, KEPT, {}},
    {"8 pages", {{400, 4, 8}}, KEPT, {}},
    {"9 pages", {{400, 4, 9}}, KEPT, {}},
    {"12 pages", {{400, 4, 12}}, KEPT, {}},
    {"16 pages", {{400, 4, 16}}, KEPT, {}},
    {"25 pages", {{400, 4, 25}}, KEPT, {}},
    {"4 pages, border 3, all order bits", {{400, 4, 4}, {398, 2, 3}, {1808, 2, 0x13}}, KEPT, {}},
    {"border 4", {{400, 4, 4}, {398, 2, 4}}, MENDED, {{398, 2, 0}}},
    {"order bit 2", {{400, 4, 4}, {1808, 2, 0x17}}, MENDED, {{1808, 2, 0}}},
    {"order bit 15", {{400, 4, 4}, {1808, 2, 0x8000}}, MENDED, {{1808, 2, 0}}},
    {"border of 300 dpi", {{400, 4, 4}, {380, 4, 300}, {1882, 2, 9}}, KEPT, {{1882, 2, 3}, {1968, 2, 59}}},
    {"border of 600 dpi", {{400, 4, 4}, {1882, 2, 99}, {1968, 2, 99}}, KEPT, {{1882, 2, 6}, {1968, 2, 118}}},
    {"border of 1200 dpi", {{400, 4, 4}, {380, 4, 1200}}, KEPT, {{1882, 2, 12}, {1968, 2, 236}}},
    {"border of other resolutions", {{400, 4, 4}, {380, 4, 400}, {1882, 2, 9}}, KEPT, {}},
    {"border width below 0", {{400, 4, 4}, {380, 4, 400}, {1882, 2, -1}}, MENDED, {{1882, 2, 0}}},
    {"border length below 0", {{400, 4, 4}, {380, 4, 400}, {1968, 2, -1}}, MENDED, {{1968, 2, 0}}},
    {"both sides of a border count",
     {{400, 4, 4}, {1882, 2, -1}, {1968, 2, -1}},
     MENDED_TWICE,
     {{1882, 2, 6}, {1968, 2, 118}}},
};

/* A text watermark has 412 type, 424 first page only, 426 character set, 428 text (last character 554), 556 face
   (618), 620 size, 624 angle, 628 colour, 632 bold, 634 italic, 636 placement. */
constexpr CheckRow aWatermarkRows[] = {
    {"type 3", {{412, 4, 3}}, MENDED, {{412, 4, 0}}},
    {"type 33", {{412, 4, 33}}, MENDED, {{412, 4, 0}}},
    {"type 0x10005", {{412, 4, 0x10005}}, MENDED, {{412, 4, 0}}},
    {"no watermark, nothing looked at", {{424, 2, 9}, {426, 2, -1}, {554, 2, 'X'}, {636, 2, 99}}, KEPT, {}},
    {"text",
     {{412, 4, 1}, {620, 4, 72}, {624, 4, 3599}, {628, 4, 0xFFFFFF}, {632, 4, 0x10001}, {636, 2, 9}},
     KEPT,
     {}},
    {"text, type 5", {{412, 4, 5}, {424, 2, 1}, {620, 4, 72}, {426, 2, 255}}, KEPT, {}},
    {"text, type 17", {{412, 4, 17}, {620, 4, 72}}, KEPT, {}},
    {"text, type 21", {{412, 4, 21}, {620, 4, 72}}, KEPT, {}},
    {"first page 2", {{412, 4, 5}, {620, 4, 72}, {424, 2, 2}}, MENDED, {{424, 2, 0}}},
    {"character set below 0", {{412, 4, 5}, {620, 4, 72}, {426, 2, -1}}, MENDED, {{412, 4, 0}}},
    {"text without an end",
     {{412, 4, 5}, {620, 4, 72}, {428, 2, 'T'}, {554, 2, 'X'}, {556, 2, 'F'}},
     MENDED,
     {{412, 4, 0}, {428, 2, 0}, {554, 2, 0}}},
    {"face without an end",
     {{412, 4, 5}, {620, 4, 72}, {428, 2, 'T'}, {556, 2, 'F'}, {618, 2, 'X'}},
     MENDED,
     {{412, 4, 0}, {556, 2, 0}, {618, 2, 0}}},
    {"text of 0 points", {{412, 4, 5}}, MENDED, {{412, 4, 0}}},
    {"angle of a whole turn", {{412, 4, 5}, {620, 4, 72}, {624, 4, 3600}}, MENDED, {{412, 4, 0}}},
    {"angle above the sign", {{412, 4, 5}, {620, 4, 72}, {624, 4, -1}}, MENDED, {{412, 4, 0}}},
    {"colour of 25 bits", {{412, 4, 5}, {620, 4, 72}, {628, 4, 0x1000000}}, MENDED, {{412, 4, 0}}},
    {"bold 2", {{412, 4, 5}, {620, 4, 72}, {632, 2, 2}}, MENDED, {{412, 4, 0}}},
    {"italic 2", {{412, 4, 5}, {620, 4, 72}, {634, 2, 2}}, MENDED, {{412, 4, 0}}},
    {"placement 10", {{412, 4, 5}, {620, 4, 72}, {636, 2, 10}}, MENDED, {{636, 2, 0}}},
    {"two failures of a text", {{412, 4, 1}, {426, 2, -1}}, MENDED_TWICE, {{412, 4, 0}}},
    {"three failures of a text",
     {{412, 4, 1}, {426, 2, -1}, {624, 4, 3600}, {628, 4, -1}},
     REFUSED,
     {{412, 4, 0}}},
    {"a failing text is still placed", {{412, 4, 1}, {636, 2, 10}}, MENDED_TWICE, {{412, 4, 0}, {636, 2, 0}}},
    {"file", {{412, 4, 6}, {426, 2, -1}, {554, 2, 'X'}, {624, 4, 3600}}, KEPT, {}},
    {"file, type 2", {{412, 4, 2}}, KEPT, {}},
    {"file name without an end",
     {{412, 4, 6}, {428, 2, 'N'}, {554, 2, 'X'}, {618, 2, 'X'}},
     MENDED,
     {{412, 4, 0}, {428, 2, 0}, {554, 2, 0}, {618, 2, 0}}},
    {"file, first page 2", {{412, 4, 6}, {424, 2, 2}}, MENDED, {{424, 2, 0}}},
    {"file, placement 10", {{412, 4, 6}, {636, 2, 10}}, MENDED, {{636, 2, 0}}},
    {"bitmap",
     {{412, 4, 36}, {426, 2, 1}, {554, 2, 'X'}, {620, 4, 1}, {624, 4, 9999}, {628, 4, -1}},
     KEPT,
     {}},
    {"bitmap, type 32", {{412, 4, 32}, {426, 2, 600}, {620, 4, -1}, {624, 4, -1}}, KEPT, {}},
    {"bitmap of 0 dpi", {{412, 4, 36}, {620, 4, 1}, {624, 4, 1}}, MENDED, {{412, 4, 0}}},
    {"bitmap of less", {{412, 4, 36}, {426, 2, -1}, {620, 4, 1}, {624, 4, 1}}, MENDED, {{412, 4, 0}}},
    {"bitmap name without an end",
     {{412, 4, 36}, {426, 2, 1}, {620, 4, 1}, {624, 4, 1}, {428, 2, 'N'}, {618, 2, 'X'}},
     MENDED,
     {{412, 4, 0}, {428, 2, 0}, {618, 2, 0}}},
    {"bitmap without a width", {{412, 4, 36}, {426, 2, 1}, {624, 4, 1}}, MENDED, {{412, 4, 0}}},
    {"bitmap without a length", {{412, 4, 36}, {426, 2, 1}, {620, 4, 1}}, MENDED, {{412, 4, 0}}},
    {"bitmap, placement 0xFFFF",
     {{412, 4, 36}, {426, 2, 1}, {620, 4, 1}, {624, 4, 1}, {636, 2, -1}},
     MENDED,
     {{636, 2, 0}}},
    {"three failures of a bitmap", {{412, 4, 36}, {636, 2, 10}}, REFUSED, {{412, 4, 0}}},
};

/* Front: 648 cover, 650 bin, 652 paper, 654 length, 656 width, 658 pages, 660 duplex, 1740 medium; back: 662 to
   670, duplex 1806, medium 1756. The model has three media. */
constexpr CheckRow aCoverRows[] = {
    {"no front cover, nothing looked at",
     {{650, 2, 16}, {652, 2, 200}, {658, 2, 12}, {660, 2, 9}, {1740, 2, 9}},
     KEPT,
     {}},
    {"front cover", {{648, 2, 1}, {1740, 2, 1}}, KEPT, {}},
    {"front cover 2", {{648, 2, 2}, {1740, 2, 1}}, MENDED, {{648, 2, 0}}},
    {"front bin 15", {{648, 2, 1}, {1740, 2, 3}, {650, 2, 15}}, KEPT, {}},
    {"front bin 16", {{648, 2, 1}, {1740, 2, 1}, {650, 2, 16}}, MENDED, {{650, 2, 1025}}},
    {"front bin 255", {{648, 2, 1}, {1740, 2, 1}, {650, 2, 255}}, MENDED, {{650, 2, 1025}}},
    {"front bin 256", {{648, 2, 1}, {1740, 2, 1}, {650, 2, 256}}, KEPT, {}},
    {"front bin 0", {{648, 2, 1}, {1740, 2, 1}, {650, 2, 0}}, MENDED, {{650, 2, 1025}}},
    {"front bin below 0", {{648, 2, 1}, {1740, 2, 1}, {650, 2, -1}}, MENDED, {{650, 2, 1025}}},
    {"front paper of a size",
     {{648, 2, 1}, {1740, 2, 1}, {652, 2, 300}, {654, 2, 1270}, {656, 2, 3112}},
     KEPT,
     {}},
    {"front paper that is none",
     {{648, 2, 1}, {1740, 2, 1}, {652, 2, 200}, {654, 2, 1270}, {656, 2, 3112}},
     MENDED,
     {{648, 2, 0}}},
    {"front paper too short",
     {{648, 2, 1}, {1740, 2, 1}, {652, 2, 1}, {654, 2, 1269}, {656, 2, 3112}},
     MENDED,
     {{648, 2, 0}}},
    {"front paper too wide",
     {{648, 2, 1}, {1740, 2, 1}, {652, 2, 1}, {654, 2, 1270}, {656, 2, 3113}},
     MENDED,
     {{648, 2, 0}}},
    {"front, 16 pages", {{648, 2, 1}, {1740, 2, 1}, {658, 2, 16}}, KEPT, {}},
    {"front, 8 pages", {{648, 2, 1}, {1740, 2, 1}, {658, 2, 8}}, KEPT, {}},
    {"front, 12 pages", {{648, 2, 1}, {1740, 2, 1}, {658, 2, 12}}, MENDED, {{658, 2, 1}}},
    {"front, 25 pages", {{648, 2, 1}, {1740, 2, 1}, {658, 2, 25}}, MENDED, {{658, 2, 1}}},
    {"front, 0 pages", {{648, 2, 1}, {1740, 2, 1}, {658, 2, 0}}, MENDED, {{658, 2, 1}}},
    {"front duplex 0", {{648, 2, 1}, {1740, 2, 1}, {660, 2, 0}}, KEPT, {}},
    {"front duplex 2", {{648, 2, 1}, {1740, 2, 1}, {660, 2, 2}}, MENDED, {{660, 2, 1}}},
    {"front medium 0", {{648, 2, 1}}, MENDED, {{648, 2, 0}}},
    {"front medium behind the table", {{648, 2, 1}, {1740, 2, 4}}, MENDED, {{648, 2, 0}}},
    {"front, all tests run behind the first that fails",
     {{648, 2, 1}, {652, 2, 200}},
     MENDED_TWICE,
     {{648, 2, 0}}},
    {"front, the third",
     {{648, 2, 1}, {650, 2, 16}, {658, 2, 3}, {660, 2, 7}},
     REFUSED,
     {{650, 2, 1025}, {658, 2, 1}, {660, 2, 1}}},
    {"no back cover, nothing looked at", {{664, 2, 16}, {666, 2, 200}, {1806, 2, 9}, {1756, 2, 9}}, KEPT, {}},
    {"back cover", {{662, 2, 1}, {1756, 2, 3}, {658, 2, 12}}, KEPT, {}},
    {"back cover 2", {{662, 2, 2}, {1756, 2, 3}}, MENDED, {{662, 2, 0}}},
    {"back bin 16", {{662, 2, 1}, {1756, 2, 1}, {664, 2, 16}}, MENDED, {{664, 2, 1025}}},
    {"back paper of a size",
     {{662, 2, 1}, {1756, 2, 1}, {666, 2, 1}, {668, 2, 12000}, {670, 2, 762}},
     KEPT,
     {}},
    {"back paper too narrow",
     {{662, 2, 1}, {1756, 2, 1}, {666, 2, 1}, {668, 2, 12000}, {670, 2, 761}},
     MENDED,
     {{662, 2, 0}}},
    {"back paper too long",
     {{662, 2, 1}, {1756, 2, 1}, {666, 2, 1}, {668, 2, 12001}, {670, 2, 762}},
     MENDED,
     {{662, 2, 0}}},
    {"back duplex 2", {{662, 2, 1}, {1756, 2, 1}, {1806, 2, 2}}, MENDED, {{1806, 2, 1}}},
    {"back duplex 0", {{662, 2, 1}, {1756, 2, 1}, {1806, 2, 0}}, KEPT, {}},
    {"back medium below 0", {{662, 2, 1}, {1756, 2, -1}}, MENDED, {{662, 2, 0}}},
    {"separators are switched off", {{672, 2, 1}, {674, 2, 0}, {676, 2, 200}}, KEPT, {{672, 2, 0}}},
};

constexpr CheckRow aJobRows[] = {
    {"collation without an end", {{684, 1, 'A'}, {695, 1, 'Z'}}, MENDED, {{684, 1, 0}, {695, 1, 0}}},
    {"comment without an end", {{696, 1, 'A'}, {823, 1, 'Z'}}, MENDED, {{696, 1, 0}, {823, 1, 0}}},
    {"start without an end", {{824, 1, 'A'}, {1463, 1, 'Z'}}, MENDED, {{824, 1, 0}, {1463, 1, 0}}},
    {"end without an end", {{1464, 1, 'A'}, {1719, 1, 'Z'}}, MENDED, {{1464, 1, 0}, {1719, 1, 0}}},
    {"texts", {{684, 1, 'A'}, {696, 1, 'A'}, {824, 1, 'A'}, {1464, 1, 'A'}}, KEPT, {}},
    {"plain job", {{1800, 2, 1}}, KEPT, {}},
    {"plain job 2", {{1800, 2, 2}}, MENDED, {{1800, 2, 0}}},
    {"last medium", {{1724, 2, 3}}, KEPT, {}},
    {"medium 0", {{1724, 2, 0}}, MENDED, {{1724, 2, 1}}},
    {"medium behind the table", {{1724, 2, 4}}, MENDED, {{1724, 2, 1}}},
    {"medium below 0", {{1724, 2, -1}}, MENDED, {{1724, 2, 1}}},
    {"black text", {{1802, 2, 1}}, KEPT, {}},
    {"black text 2", {{1802, 2, 2}}, MENDED, {{1802, 2, 0}}},
    {"2 colours", {{1804, 2, 2}}, KEPT, {}},
    {"256 colours", {{1804, 2, 256}}, KEPT, {}},
    {"16 colours", {{1804, 2, 16}}, MENDED, {{1804, 2, 0}}},
    {"reverse order", {{1810, 2, 1}}, KEPT, {}},
    {"reverse order 2", {{1810, 2, 2}}, MENDED, {{1810, 2, 0}}},
    {"contrast at its ends", {{1814, 2, -50}, {1816, 2, 50}}, KEPT, {}},
    {"brightness at its ends", {{1814, 2, 50}, {1816, 2, -50}}, KEPT, {}},
    {"contrast 51", {{1814, 2, 51}}, REFUSED, {}},
    {"contrast -51", {{1814, 2, -51}}, REFUSED, {}},
    {"brightness 51", {{1816, 2, 51}}, REFUSED, {}},
    {"brightness -51", {{1816, 2, -51}}, REFUSED, {}},
    {"forced fields cost nothing",
     {{672, 2, 1}, {1720, 4, 0x10000}, {1818, 2, 1}, {1820, 2, 1}, {1884, 2, 1}},
     KEPT,
     {{672, 2, 0}, {1720, 4, 0}, {1818, 2, 0}, {1820, 2, 0}, {1884, 2, 0}}},
    {"page feature", {{1822, 2, 32767}}, KEPT, {}},
    {"page feature below 0", {{1822, 2, -1}}, MENDED, {{1822, 2, 0}}},
    {"overlay 10", {{1828, 2, 10}}, KEPT, {}},
    {"overlay 11", {{1828, 2, 11}}, MENDED, {{1828, 2, 0}}},
    {"no overlay, names not looked at", {{1854, 2, 'X'}, {1940, 2, 'X'}}, KEPT, {}},
    {"overlay name without an end",
     {{1828, 2, 1}, {1830, 2, 'A'}, {1854, 2, 'X'}, {1916, 2, 'B'}},
     MENDED,
     {{1828, 2, 0}, {1830, 2, 0}, {1854, 2, 0}}},
    {"second overlay name without an end",
     {{1828, 2, 1}, {1830, 2, 'A'}, {1916, 2, 'B'}, {1940, 2, 'X'}},
     MENDED,
     {{1828, 2, 0}, {1916, 2, 0}, {1940, 2, 0}}},
    {"both overlay names",
     {{1828, 2, 1}, {1854, 2, 'X'}, {1940, 2, 'X'}},
     MENDED_TWICE,
     {{1828, 2, 0}, {1854, 2, 0}, {1940, 2, 0}}},
    {"an overlay number that is none spares the names",
     {{1828, 2, 11}, {1854, 2, 'X'}},
     MENDED,
     {{1828, 2, 0}}},
};

constexpr CheckRow aColorRows[] = {
    {"all pairs at the data's end",
     {{1856, 4, 0x00C800C8},
      {1860, 4, 0x00C800C8},
      {1864, 4, 0x00C800C8},
      {1868, 4, 0x00C800C8},
      {1872, 4, 0x00C800C8},
      {1876, 4, 0x00C800C8}},
     KEPT,
     {}},
    {"a pair of two bad halves", {{1868, 2, -1}, {1870, 2, COLOR_END + 1}}, MENDED_TWICE, {{1868, 4, 0}}},
    {"three bad halves",
     {{1856, 2, -1}, {1870, 2, -1}, {1872, 2, 201}, {1874, 2, 201}},
     REFUSED,
     {{1856, 4, 0}, {1868, 4, 0}, {1872, 4, 0}}},
    {"17 commands", {{1944, 2, 17}}, KEPT, {}},
    {"as many commands as data", {{1944, 2, COLOR_END}}, KEPT, {}},
    {"more commands than data", {{1944, 2, COLOR_END + 1}}, MENDED, {{1944, 2, 0}}},
    {"less than no commands", {{1944, 2, -1}}, MENDED, {{1944, 2, 0}}},
    {"poster growth 5", {{1946, 2, 5}}, KEPT, {}},
    {"poster growth 6", {{1946, 2, 6}}, MENDED, {{1946, 2, 0}}},
    {"poster of 32767 x 5", {{1962, 2, 32767}, {1964, 2, 5}, {1966, 2, 2}}, KEPT, {}},
    {"poster columns below 0", {{1962, 2, -1}}, MENDED, {{1962, 2, 0}}},
    {"poster rows 6", {{1962, 2, 1}, {1964, 2, 6}}, MENDED_TWICE, {{1962, 2, 0}, {1964, 2, 0}}},
    {"poster rows below 0", {{1962, 2, 1}, {1964, 2, -1}}, MENDED, {{1964, 2, 0}}},
    {"poster without an orientation", {{1962, 2, 2}, {1964, 2, 3}}, MENDED, {{1966, 2, 1}}},
    {"poster orientation 3", {{1962, 2, 2}, {1964, 2, 3}, {1966, 2, 3}}, MENDED, {{1966, 2, 1}}},
    {"poster orientation 1", {{1962, 2, 2}, {1964, 2, 3}, {1966, 2, 1}}, KEPT, {}},
    {"half a poster has no orientation", {{1962, 2, 2}, {1966, 2, 9}}, KEPT, {}},
    {"the other half has none either", {{1964, 2, 3}, {1966, 2, 9}}, KEPT, {}},
    {"binding 7", {{1952, 2, 7}}, KEPT, {}},
    {"binding 256", {{1952, 2, 256}}, KEPT, {}},
    {"binding 8", {{1952, 2, 8}}, MENDED, {{1952, 2, 0}}},
    {"binding 257", {{1952, 2, 257}}, MENDED, {{1952, 2, 0}}},
    {"profile", {{2696, 2, 2}}, MENDED, {{2696, 2, 0}}},
    {"screen", {{2698, 2, 1}}, MENDED, {{2698, 2, 0}}},
    {"profile and screen", {{2696, 2, 2}, {2698, 2, 1}}, MENDED_TWICE, {{2696, 4, 0}}},
    {"command to the data's end", {{2700, 2, 190}, {2702, 2, 0x600A}}, KEPT, {}},
    {"command beyond it", {{2700, 2, 190}, {2702, 2, 0x600B}}, MENDED, {{2700, 4, 0}}},
    {"empty command at its end", {{2704, 2, COLOR_END}, {2706, 2, 0xE000}}, KEPT, {}},
    {"empty command beyond it", {{2704, 2, COLOR_END + 1}}, MENDED, {{2704, 4, 0}}},
    {"command before the data", {{2708, 2, -1}}, MENDED, {{2708, 4, 0}}},
    {"command before the data that ends in it", {{2708, 2, -1}, {2710, 2, 2}}, MENDED, {{2708, 4, 0}}},
    {"last command too long", {{2760, 2, 0}, {2762, 2, 0x1FFF}}, MENDED, {{2760, 4, 0}}},
};

/* Features: a list of 3 at 2764, a typed one at 2766, a list of 2 at 2768. Output bins: commands 5, 7, 0x9000. */
constexpr CheckRow aChoiceRows[] = {
    {"last value of a list", {{2764, 2, 2}, {2768, 2, 1}}, KEPT, {}},
    {"value behind the list", {{2764, 2, 3}}, MENDED, {{2764, 2, 0}}},
    {"value behind the shorter list", {{2768, 2, 2}}, MENDED, {{2768, 2, 0}}},
    {"typed value for a list", {{2764, 2, -1}}, MENDED, {{2764, 2, 0}}},
    {"last typed value", {{2766, 2, -8}}, KEPT, {}},
    {"typed value behind the last", {{2766, 2, -9}}, MENDED, {{2766, 2, -1}}},
    {"listed value where one is typed", {{2766, 2, 0}}, MENDED, {{2766, 2, -1}}},
    {"slots without a feature", {{2770, 2, 77}, {2826, 2, -77}}, KEPT, {}},
    {"first typed text without an end", {{2828, 1, 'A'}, {2839, 1, 'Z'}}, MENDED, {{2839, 1, 0}}},
    {"last typed text without an end", {{2912, 1, 'A'}, {2923, 1, 'Z'}}, MENDED, {{2923, 1, 0}}},
    {"another output bin", {{2924, 2, 7}}, KEPT, {}},
    {"output bin 0", {{2924, 2, 0}}, MENDED, {}},
    {"no such output bin", {{2924, 2, 6}}, MENDED, {{2924, 2, 0}}},
    {"output bin above the sign", {{2924, 2, 0x9000}}, MENDED, {{2924, 2, 0}}},
    {"inches", {{2926, 2, 1}, {2928, 2, 1}}, KEPT, {}},
    {"measure 2", {{2926, 2, 2}}, MENDED, {{2926, 2, 0}}},
    {"user's halftone 2", {{2928, 2, 2}}, MENDED, {{2928, 2, 0}}},
    {"colour mode 3", {{2930, 2, 3}}, KEPT, {}},
    {"colour mode behind the table", {{2930, 2, 6}}, MENDED, {{2930, 2, 1}}},
    {"colour mode below 0", {{2930, 2, -1}}, MENDED, {{2930, 2, 1}}},
    {"colour mode 4 is there, and refused", {{2930, 2, 4}}, REFUSED, {}},
    {"last resolution, without its dots", {{2932, 2, 2}}, KEPT, {}},
    {"resolution behind the table", {{2932, 2, 3}}, MENDED, {{2932, 2, 1}}},
    {"resolution below 0", {{2932, 2, -1}}, MENDED, {{2932, 2, 1}}},
    {"last screen", {{2934, 2, 1}}, KEPT, {}},
    {"screen behind the table", {{2934, 2, 2}}, MENDED, {{2934, 2, 0}}},
    {"screen below 0", {{2934, 2, -1}}, MENDED, {{2934, 2, 0}}},
    {"what is handed on",
     {{2936, 4, -1}, {2940, 8, -1}, {3728, 2, -1}, {3768, 8, -1}, {3776, 2, -1}, {2692, 4, -1}},
     KEPT,
     {}},
    {"reserved bytes",
     {{638, 2, -1}, {1726, 8, -1}, {1948, 4, -1}, {1970, 8, -1}, {3730, 8, -1}, {4080, 8, -1}},
     KEPT,
     {}},
};

/* Option lists: text (2948) of 6, 6, 6 and 2 values; graphics (2956) 6 and 2; image (2964) 6; general (2972) 6. */
constexpr CheckRow aOptionRows[] = {
    {"text slots", {{2948, 2, 3}, {2950, 2, 3}, {2952, 2, 5}, {2954, 2, 1}}, KEPT, {}},
    {"text value below 0", {{2948, 2, -1}}, MENDED, {{2948, 2, 0}}},
    {"text value behind its list", {{2952, 2, 6}}, MENDED, {{2952, 2, 0}}},
    {"text value behind the shorter list", {{2954, 2, 2}}, MENDED, {{2954, 2, 0}}},
    {"text value 4 of the first slot", {{2948, 2, 4}}, REFUSED, {}},
    {"text value 4 of the second slot", {{2950, 2, 4}}, REFUSED, {}},
    {"text value 4 of the third slot", {{2952, 2, 4}}, KEPT, {}},
    {"graphics value", {{2956, 2, 3}, {2958, 2, 1}}, KEPT, {}},
    {"graphics value behind its list", {{2958, 2, 2}}, MENDED, {{2958, 2, 0}}},
    {"graphics slot behind the table", {{2960, 2, 1}}, MENDED, {{2960, 2, 0}}},
    {"graphics value 4 of the first slot", {{2956, 2, 4}}, REFUSED, {}},
    {"image slot behind the table", {{2966, 2, 1}}, MENDED, {{2966, 2, 0}}},
    {"image value 4 of the first slot", {{2964, 2, 4}}, REFUSED, {}},
    {"last general slot", {{2978, 2, 1}}, MENDED, {{2978, 2, 0}}},
    {"general value 4 of the first slot", {{2972, 2, 4}}, REFUSED, {}},
    {"two arrays", {{2948, 2, 6}, {2972, 2, -1}}, MENDED_TWICE, {{2948, 2, 0}, {2972, 2, 0}}},
    {"three slots of an array",
     {{2966, 2, 1}, {2968, 4, 0x00010001}, {2972, 2, 9}},
     REFUSED,
     {{2966, 2, 0}, {2968, 4, 0}}},
    {"an array is gone through before its repairs are added",
     {{384, 2, 2}, {2948, 8, -1}},
     REFUSED,
     {{384, 2, 0}, {2948, 2, 0}, {2950, 4, 0}}},
};

constexpr CheckRow aClosingRows[] = {
    {"transparency 100", {{3718, 2, 100}}, KEPT, {}},
    {"no transparency", {{3718, 2, 0xFFFF}}, KEPT, {}},
    {"transparency 101", {{3718, 2, 101}}, MENDED, {{3718, 2, 50}}},
    {"scale of the watermark", {{3720, 4, 10000}, {3724, 4, 10000}}, KEPT, {}},
    {"scale across", {{3720, 4, 10001}, {3724, 4, 7}}, MENDED, {{3720, 4, 100}}},
    {"scale down", {{3720, 4, 7}, {3724, 4, -1}}, MENDED, {{3724, 4, 7}}},
    {"both scales", {{3720, 4, -1}, {3724, 4, 10001}}, MENDED_TWICE, {{3720, 4, 100}, {3724, 4, 100}}},
    {"binding on the long edge", {{404, 4, 0x10000}}, REFUSED, {}},
    {"binding on the short edge", {{408, 4, -1}}, REFUSED, {}},
    {"binding of the back", {{1954, 4, 7}, {1958, 4, 7}, {1906, 2, 7}, {1908, 2, 7}}, KEPT, {}},
    {"margins 1", {{682, 2, 1}}, REFUSED, {}},
    {"margins 2", {{682, 2, 2}}, REFUSED, {}},
    {"margins 3", {{682, 2, 3}}, MENDED, {{682, 2, 0}}},
    {"margins 2, left below 0", {{682, 2, 2}, {1790, 2, -1}}, REFUSED, {{682, 2, 0}}},
    {"margins 2, top below 0", {{682, 2, 2}, {1792, 2, -1}}, REFUSED, {{682, 2, 0}}},
    {"margins 2, right below 0", {{682, 2, 2}, {1794, 2, -1}}, REFUSED, {{682, 2, 0}}},
    {"margins 2, bottom below 0", {{682, 2, 2}, {1796, 2, -1}}, REFUSED, {{682, 2, 0}}},
    {"left margin", {{1790, 2, 1}}, REFUSED, {}},
    {"top margin", {{1792, 2, 1}}, REFUSED, {}},
    {"right margin", {{1794, 2, 1}}, REFUSED, {}},
    {"bottom margin", {{1796, 2, 1}}, REFUSED, {}},
    {"inserted pages are cleared",
     {{2980, 8, -1}, {2988, 8, -1}, {2998, 2, 77}},
     KEPT,
     {{2980, 8, 0}, {2988, 8, 0}}},
    {"the last inserted page", {{2994, 4, 0x00010001}}, MENDED, {{2994, 4, 0}}},
};

/* Kind 3. Styles from 2982: size, type; blocks: style, count. */
constexpr CheckRow aStyleRows[] = {
    {"nothing", {}, KEPT, {}},
    {"exception region", {{1886, 2, 940}}, KEPT, {}},
    {"inserted pages taken back", {{1886, 2, -940}}, REFUSED, {}},
    {"the words of other kinds", {{2996, 2, 1}}, KEPT, {{2996, 2, 0}}},
    {"4 styles", {{2980, 2, 0x0104}}, MENDED, {{2980, 2, 0}}},
    {"4 blocks", {{2980, 2, 0x0401}}, MENDED, {{2980, 2, 0}}},
    {"both counts", {{2980, 2, 0x0505}}, MENDED_TWICE, {{2980, 2, 0}}},
    {"3 styles of type 6 and a block",
     {{2980, 2, 0x0103},
      {2982, 4, 0x00060004},
      {2986, 4, 0x00060004},
      {2990, 4, 0x00060004},
      {2994, 2, 0x0103}},
     KEPT,
     {{2980, 8, 0}, {2988, 8, 0}}},
    {"style of type 7 far behind",
     {{2980, 2, 0x0002}, {2982, 4, 0x00010014}, {3002, 4, 0x00070004}},
     MENDED,
     {{2980, 2, 0}, {2982, 4, 0}, {3004, 1, 0}}},
    {"style of type 255, and a usage", {{2980, 2, 0x0001}, {2982, 4, 0x09FF0004}}, MENDED, {{2980, 8, 0}}},
    {"style up to the end", {{2980, 2, 0x0001}, {2982, 2, 734}}, KEPT, {{2980, 4, 0}}},
    {"style beyond the end", {{2980, 2, 0x0001}, {2982, 2, 735}}, MENDED, {{2980, 4, 0}}},
    {"style beyond the end takes the blocks along",
     {{2980, 2, 0x0301}, {2982, 2, 735}, {3717, 1, 9}},
     MENDED,
     {{2980, 4, 0}}},
    {"style beyond the end ends the walk", {{2980, 2, 0x0003}, {2982, 2, 65535}}, MENDED, {{2980, 4, 0}}},
    {"styles of no size", {{2980, 2, 0x0303}, {2982, 4, 0x00030000}}, KEPT, {{2980, 8, 0}}},
    {"block of style 4 far behind",
     {{2980, 2, 0x0201}, {2982, 2, 20}, {3002, 2, 0x0103}, {3006, 2, 0x0004}},
     MENDED,
     {{2980, 4, 0}, {3006, 1, 0}}},
    {"block up to the end", {{2980, 2, 0x0101}, {2982, 2, 222}, {3204, 2, 0xFF00}}, KEPT, {{2980, 4, 0}}},
    {"block at the very end", {{2980, 2, 0x0201}, {2982, 2, 222}, {3204, 2, 0xFF00}}, MENDED, {{2980, 4, 0}}},
    {"block beyond the end", {{2980, 2, 0x0301}, {2982, 2, 223}, {3205, 2, 0xFF00}}, MENDED, {{2980, 4, 0}}},
    {"type and style of one walk",
     {{2980, 2, 0x0101}, {2982, 4, 0x00070020}, {3014, 2, 0x0009}},
     MENDED_TWICE,
     {{2980, 8, 0}, {3014, 1, 0}}},
    {"output bin", {{2924, 2, 7}}, KEPT, {}},
    {"value of a list with data", {{2764, 2, 2}, {2768, 2, 1}}, KEPT, {}},
    {"value behind a list with data", {{2768, 2, 2}}, MENDED, {{2768, 2, 0}}},
};

constexpr CheckRow aSecondImageRows[] = {
    {"counts are not looked at", {{2980, 4, 0xFFFF0505}}, KEPT, {{2980, 4, 0}}},
    {"the last word is", {{2996, 2, 1}}, MENDED, {{2996, 2, 0}}},
};

/* A model without any table. Its resolution row is never there: one repair at each check. */
constexpr CheckRow aBareRows[] = {
    {"nothing", {}, MENDED, {}},
    {"resolution", {{2932, 2, 4}}, MENDED, {{2932, 2, 0}}},
    {"medium", {{1724, 2, 5}}, MENDED_TWICE, {{1724, 2, 1}}},
    {"the mended medium costs again", {{1724, 2, 1}}, MENDED_TWICE, {}},
    {"front cover of medium 0", {{648, 2, 1}}, MENDED, {}},
    {"output bin", {{2924, 2, 5}}, MENDED_TWICE, {{2924, 2, 0}}},
    {"colour mode", {{2930, 2, 1}}, MENDED_TWICE, {{2930, 2, 0}}},
    {"screen", {{2934, 2, 1}}, MENDED_TWICE, {{2934, 2, 0}}},
    {"text slot", {{2948, 2, 1}}, MENDED_TWICE, {{2948, 2, 0}}},
    {"font count", {{224, 4, 0x30000}}, MENDED, {}},
    {"colour slice", {{1856, 2, 1}}, MENDED_TWICE, {{1856, 2, 0}}},
    {"colour command", {{2702, 2, 0xE001}}, MENDED_TWICE, {{2702, 2, 0}}},
    {"typed slot", {{2764, 2, -1}}, MENDED, {}},
    {"paper of any size", {{388, 2, 1}, {390, 2, 9}, {392, 2, 32767}, {394, 2, 0}}, MENDED, {}},
};

} // namespace

class PrivateCheck : public CheckTest {
  protected:
    template <size_t n> void RunRows(const CheckRow (&aRows)[n])
    {
        for (const CheckRow& row : aRows) {
            Run(row);
        }
    }
    void Run(const CheckRow& row) { RunRow(row, &PrivateCheck::CheckPrivate, aFillers); }

    void SetPath(DriverDevmode* pRecord, const WideText& tcPath)
    {
        WideText tcWhole = tcPath;
        tcWhole.resize(160);
        std::memcpy(reinterpret_cast<u8*>(pRecord) + 2052, tcWhole.data(), 320);
    }
};

TEST_F(PrivateCheck, Identity)
{
    UseModel(CheckModel());
    RunRows(aIdentity);
}

TEST_F(PrivateCheck, FontsLayoutAndCovers)
{
    UseModel(CheckModel());
    RunRows(aFontRows);
    RunRows(aLayoutRows);
    RunRows(aWatermarkRows);
    RunRows(aCoverRows);
}

TEST_F(PrivateCheck, JobColourAndChoices)
{
    UseModel(CheckModel());
    RunRows(aJobRows);
    RunRows(aColorRows);
    RunRows(aChoiceRows);
    RunRows(aOptionRows);
    RunRows(aClosingRows);
    for (size_t nAt = 1856; nAt < 1880; nAt += 2) { /* the twelve numbers of the six pairs */
        size_t nPair = nAt & ~size_t{3};
        Run({"colour slice behind the data",
             {{nPair, 4, 0x00010001}, {nAt, 2, COLOR_END + 1}},
             MENDED,
             {{nPair, 4, 0}}});
        Run({"colour slice below 0", {{nPair, 4, 0x00010001}, {nAt, 2, -1}}, MENDED, {{nPair, 4, 0}}});
    }
}

TEST_F(PrivateCheck, HalftonesBelongToOneKindAndClass)
{
    UseModel(CheckModel(KIND_PCL5, CLASS_COLOR));
    RunRows(aHalftoneRows);
    UseModel(CheckModel(KIND_PCL5, 1));
    Run({"class 1", {{364, 4, 1}, {368, 4, 1}}, MENDED_TWICE, {{364, 4, 0}, {368, 4, 0}}});
    Run({"class 1, cell", {{372, 4, 8}}, MENDED, {{372, 4, 0}}});
    UseModel(CheckModel(KIND_POSTSCRIPT, CLASS_COLOR));
    Run({"kind 2", {{364, 4, 1}}, MENDED, {{364, 4, 0}}});
}

TEST_F(PrivateCheck, StylesAndBlocks)
{
    UseModel(CheckModel(KIND_IMAGE));
    RunRows(aStyleRows);
    UseModel(CheckModel(KIND_IMAGE_SECOND));
    RunRows(aSecondImageRows);
}

TEST_F(PrivateCheck, ModelWithoutTables)
{
    DescriptionBuilder bare;
    bare.Set<i16>(120, 0);
    UseModel(bare);
    RunRows(aBareRows);
}

TEST_F(PrivateCheck, EmptyTablesCostARepairEachTime)
{
    DescriptionBuilder media = CheckModel();
    media.Table<MediaRow>(48, {{}});
    UseModel(media);
    Run({"medium", {}, MENDED, {}});
    DescriptionBuilder modes = CheckModel();
    modes.Table<ColorModeRow>(220, {{}});
    UseModel(modes);
    Run({"colour mode", {{2930, 2, 0}}, MENDED, {{2930, 2, 1}}});
    DescriptionBuilder screens = CheckModel();
    screens.Table<ScreenRow>(284, {{}});
    UseModel(screens);
    Run({"screen", {}, MENDED, {}});
    DescriptionBuilder values = CheckModel();
    values.Table<OptionValueRow>(260, {{}}); /* seven rows of options that have no value */
    UseModel(values);
    Run({"option values", {}, REFUSED, {}});
}

TEST_F(PrivateCheck, TheDescriptionsPathFollowsTheDriver)
{
    UseModel(CheckModel());
    const WideText tcNow = u"C:\\DRV\\QA.XPI";
    struct {
        WideText tcHeld;
        int nResult;
    } aRows[] = {{u"D:\\OLD\\QA.XPI", 1},   {u"\\QA.XPI", 1},        {u"C:\\DRV\\QA2.XPI", 0},
                 {u"c:\\drv\\qa.xpi", 0},   {u"QA.XPI", 0},          {u"", 0},
                 {u"C:\\DRV\\QA.XPI\\", 0}, {u"C:\\DRV\\QA.XPI.", 0}};
    for (const auto& row : aRows) {
        DriverDevmode record = good, expected = good;
        SetPath(&record, row.tcHeld);
        SetPath(&expected, row.nResult ? tcNow : row.tcHeld);
        EXPECT_EQ(CheckPrivate(&record, pModel.get()), row.nResult) << Narrow(row.tcHeld);
        EXPECT_EQ(FirstDifference(record, expected), -1) << Narrow(row.tcHeld);
    }
    /* What lay behind the old path goes with it. */
    DriverDevmode record = good;
    SetPath(&record, u"D:\\OLD\\QA.XPI" + WideText(1, 0) + WideText(120, u'x'));
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 1);
    EXPECT_EQ(FirstDifference(record, good), -1);
    /* The path is brought up to date before the overlay folder refuses. */
    DriverDevmode expected = good;
    Put(&expected, {2690, 2, 'X'});
    record = expected;
    SetPath(&record, u"D:\\OLD\\QA.XPI");
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0);
    EXPECT_EQ(FirstDifference(record, expected), -1);
}

TEST_F(PrivateCheck, APathTooLongForTheRecordIsCutOnce)
{
    UseModel(CheckModel());
    WideText tcLong = u"C:\\" + WideText(170, u'D') + u"\\QA.XPI";
    PrinterSetup setup;
    setup.wcName = u"Test";
    setup.wcDriverName = u"Test Driver";
    setup.tcDriverPath = u"C:\\drv\\qrnd.dll";
    setup.atcDependentFiles = {tcLong};
    PutFile(tcLong, CheckModel().Build());
    AddPrinter(setup);
    OpenSample printer(u"Test");
    PrinterCall call(printer.hPrinter);
    DriverDevmode record = good;
    ASSERT_EQ(ValidatePrivatePart(call, &record.rPrivate, pModel.get()), 1);
    EXPECT_EQ(Get(record, 2370, 2), 0u);
    EXPECT_EQ(Get(record, 2368, 2), u'D');
}

TEST_F(PrivateCheck, FontOffsetsWithoutAFontFile)
{
    UseModel(CheckModel(KIND_PCL5, CLASS_COLOR));
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.fdf"));
    Run({"no file has no end", {{228, 4, -1}, {368, 4, -1}}, KEPT, {}});
}

TEST_F(PrivateCheck, WithoutADescription)
{
    UseModel(CheckModel());
    std::filesystem::remove(HostPath(u"C:\\drv\\qa.xpi"));
    DriverDevmode record = good;
    SetPath(&record, u"D:\\OLD\\QA.XPI");
    Put(&record, {384, 2, 2});
    DriverDevmode before = record;
    EXPECT_EQ(CheckPrivate(&record, nullptr), 0);
    EXPECT_EQ(CheckPrivate(&record, pModel.get()), 0) << "the colour data's size stands in the file alone";
    EXPECT_EQ(FirstDifference(record, before), -1);
}

TEST_F(PrivateCheck, FeaturesBeyondTheSlots)
{
    DescriptionBuilder b = CheckModel();
    std::vector<FeatureRow> rows(40, FeatureRow{1, 1, 0, 0, 0});
    rows.emplace_back();
    b.Table<FeatureRow>(188, rows);
    UseModel(b);
    Run({"typed text behind the last slot", {{2826, 2, 2}, {2828, 2, 0x7777}}, KEPT, {}});
    Run({"last slot", {{2826, 2, 3}}, MENDED, {{2826, 2, 0}}});

    UseModel(CheckModel().Set<u64>(196, 0)); /* no values at all: every feature is typed */
    Run({"typed", {}, KEPT, {}});
    Run({"listed", {{2768, 2, 0}}, MENDED, {{2768, 2, -1}}});
    b = CheckModel();
    b.Table<FeatureRow>(188, {{1, 1, 0, -1, 0}, {1, 1, 0, 32767, 0}, {}});
    UseModel(b);
    Run({"values before and behind the table", {{2764, 4, 0}}, MENDED_TWICE, {{2764, 4, 0xFFFFFFFF}}});
}

TEST_F(PrivateCheck, OptionSlotsByThemselves)
{
    UseModel(CheckModel());
    struct {
        const ColorOptionRow* pTable;
        std::array<i16, 4> before, after;
        int nRepairs;
    } aRows[] = {
        {pModel->pTextOptions, {5, 5, 5, 1}, {5, 5, 5, 1}, 0},
        {pModel->pTextOptions, {6, 5, -1, 1}, {0, 5, 0, 1}, 2},
        {pModel->pTextOptions, {6, 6, 6, 6}, {0, 0, 0, 6}, 3},
        {pModel->pGraphicsOptions, {0, 1, 0, 0}, {0, 1, 0, 0}, 0},
        {pModel->pGraphicsOptions, {0, 2, 1, 0}, {0, 0, 0, 0}, 2},
        {nullptr, {1, 0, 0, -1}, {0, 0, 0, 0}, 2},
    };
    for (const auto& row : aRows) {
        std::array<i16, 4> values = row.before;
        EXPECT_EQ(ValidateOptionSlots(pModel.get(), row.pTable, values.data()), row.nRepairs);
        EXPECT_EQ(values, row.after);
    }
}
