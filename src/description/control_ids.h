/* Numbers of the dialog templates (IDD_) and of their controls (IDC_), by page and dialog.

   Templates and strings are one contract with the language libraries, whose sources include this header, too; so
   it holds macros and nothing else. It stands beside language_dll.h, since the preview asks for controls as the
   sheets do. When a dialog opens, the string with the number of a control becomes its text: a label's string
   therefore has the control's name, and string_ids.h has the rest. */
#ifndef TQUI_DESCRIPTION_CONTROL_IDS_H
#define TQUI_DESCRIPTION_CONTROL_IDS_H

/* Common to several. IDC_OK and IDC_CANCEL close dialogs; IDC_PERCENT stands beside the zoom, the
   transparency of watermarks and the darkness of a text. */
#define IDC_OK      1702
#define IDC_CANCEL  1703
#define IDC_UNIT    1746
#define IDC_PERCENT 1877
#define IDC_LOGO    1692
#define IDC_ABOUT   1701

/* Left column of a document page. */
#define IDC_PREVIEW_GROUP 1120
#define IDC_PREVIEW       1651 /* frame; only its rectangle counts */
#define IDC_PREVIEW_SIZE  1920
#define IDC_PREVIEW_LINE1 1925 /* status lines */
#define IDC_PREVIEW_LINE2 1926
#define IDC_PREVIEW_LINE3 1927
#define IDC_PREVIEW_LINE4 1928
#define IDC_PREVIEW_LINE5 1929

/* Bottom of a document page. The list is never shown. */
#define IDC_PRESET_LABEL 1144
#define IDC_PRESET       1349
#define IDC_PRESET_APPLY 1720

/* Layout page */
#define IDD_LAYOUT                1002
#define IDC_LAYOUT_ORIENTATION    1101
#define IDC_LAYOUT_PORTRAIT       1221
#define IDC_LAYOUT_LANDSCAPE      1222
#define IDC_LAYOUT_ROTATE         1802
#define IDC_LAYOUT_DUPLEX         1109
#define IDC_LAYOUT_ONE_SIDE       1205
#define IDC_LAYOUT_LONG_EDGE      1206
#define IDC_LAYOUT_SHORT_EDGE     1207
#define IDC_LAYOUT_DUPLEX_PICTURE 1653
#define IDC_LAYOUT_GROUP          1148
#define IDC_LAYOUT_TYPE_LABEL     1997
#define IDC_LAYOUT_TYPE           1359
#define IDC_LAYOUT_ARRANGEMENT    1110
#define IDC_LAYOUT_PAGES_LABEL    1998
#define IDC_LAYOUT_PAGES          1306 /* pages on a sheet */
#define IDC_LAYOUT_BORDERS        1803
#define IDC_LAYOUT_ORDER_LABEL    1919
#define IDC_LAYOUT_ORDER          1323
#define IDC_LAYOUT_POSTER_LABEL   1989
#define IDC_LAYOUT_POSTER         1348
#define IDC_LAYOUT_BIND_RIGHT     1819
#define IDC_LAYOUT_BOOKLET_LABEL  1852 /* sheets in a group of a booklet; never shown */
#define IDC_LAYOUT_BOOKLET        1513
#define IDC_LAYOUT_BOOKLET_SPIN   1606

/* Paper page. What concerns the source and the target paper is never shown; the icons may be. */
#define IDD_PAPER               1003
#define IDC_PAPER_SIZE_LABEL    1851
#define IDC_PAPER_SIZE          1301
#define IDC_PAPER_SAVED_SIZES   1756 /* opens the dialog of the user's sizes */
#define IDC_PAPER_MEDIA_LABEL   1891
#define IDC_PAPER_MEDIA         1344
#define IDC_PAPER_SOURCE_LABEL  1854
#define IDC_PAPER_SOURCE        1302
#define IDC_PAPER_OUTPUT_LABEL  1855
#define IDC_PAPER_OUTPUT        1303 /* output bin */
#define IDC_PAPER_COPIES_LABEL  1853
#define IDC_PAPER_COPIES        1501
#define IDC_PAPER_COPIES_SPIN   1601
#define IDC_PAPER_COLLATE       1801
#define IDC_PAPER_REVERSE       1808 /* last page first */
#define IDC_PAPER_ZOOM_LABEL    1122
#define IDC_PAPER_ZOOM          1506
#define IDC_PAPER_ZOOM_BAR      1602 /* horizontal scroll bar */
#define IDC_PAPER_CENTRE        1825
#define IDC_PAPER_TARGET_LABEL  1121
#define IDC_PAPER_TARGET        1305
#define IDC_PAPER_FIT_TARGET    1818
#define IDC_PAPER_CENTRE_TARGET 1823
#define IDC_PAPER_LAYOUT_ICON   1686 /* the layout excludes a target */
#define IDC_PAPER_ZOOM_ICON     1661 /* the zoom excludes a target */
#define IDC_PAPER_MEDICAL_GROUP 1149
#define IDC_PAPER_MEDICAL_LABEL 1999
#define IDC_PAPER_MEDICAL       1400 /* a combo box, though its number is beside those of lists */
#define IDC_PAPER_IMAGE_OPTION  1811

/* Quality page */
#define IDD_QUALITY                        1004
#define IDC_QUALITY_COLOR_GROUP            1114
#define IDC_QUALITY_COLOR                  1208
#define IDC_QUALITY_MONOCHROME             1209
#define IDC_QUALITY_CORRECTION_LABEL       1132 /* of a model with a mode of kind 2 or 4 */
#define IDC_QUALITY_CORRECTION_LABEL_ALONE 1892 /* of others; has the same text */
#define IDC_QUALITY_CORRECTION             1316 /* colour mode */
#define IDC_QUALITY_OPTIONS                1711
#define IDC_QUALITY_INTENT_LABEL           1964
#define IDC_QUALITY_INTENT                 1331
#define IDC_QUALITY_TONE                   1128
#define IDC_QUALITY_CONTRAST_LABEL         1945
#define IDC_QUALITY_CONTRAST               1530
#define IDC_QUALITY_CONTRAST_SPIN          1612
#define IDC_QUALITY_BRIGHTNESS_LABEL       1946
#define IDC_QUALITY_BRIGHTNESS             1531
#define IDC_QUALITY_BRIGHTNESS_SPIN        1613
#define IDC_QUALITY_ADJUSTMENT             1151
#define IDC_QUALITY_ADJUSTMENT_ON          1216
#define IDC_QUALITY_ADJUSTMENT_OFF         1217
#define IDC_QUALITY_RESOLUTION_LABEL       1863
#define IDC_QUALITY_RESOLUTION             1304
#define IDC_QUALITY_SCREENING_LABEL        1983
#define IDC_QUALITY_SCREENING              1342
#define IDC_QUALITY_BLACK_TEXT             1809
#define IDC_QUALITY_COLOR_FILES            1738

/* Options of a colour mode: a section for each kind of object, three or four of them. */
#define IDD_OPTIONS3               1063
#define IDD_OPTIONS4               1064
#define IDC_OPTIONS_TEXT           1140
#define IDC_OPTIONS_TEXT_LIST      1410
#define IDC_OPTIONS_TEXT_LABEL     1950
#define IDC_OPTIONS_TEXT_VALUE     1326
#define IDC_OPTIONS_IMAGE          1141
#define IDC_OPTIONS_IMAGE_LIST     1411
#define IDC_OPTIONS_IMAGE_LABEL    1951
#define IDC_OPTIONS_IMAGE_VALUE    1327
#define IDC_OPTIONS_GRAPHICS       1142
#define IDC_OPTIONS_GRAPHICS_LIST  1412
#define IDC_OPTIONS_GRAPHICS_LABEL 1952
#define IDC_OPTIONS_GRAPHICS_VALUE 1328
#define IDC_OPTIONS_GENERAL        1143
#define IDC_OPTIONS_GENERAL_LIST   1413
#define IDC_OPTIONS_GENERAL_LABEL  1953
#define IDC_OPTIONS_GENERAL_VALUE  1329
#define IDC_OPTIONS_OK             1724

/* Colour format, profile and halftone screen */
#define IDD_FILES                1007
#define IDC_FILES_FORMAT_LABEL   1966
#define IDC_FILES_FORMAT         1333
#define IDC_FILES_PROFILE_LABEL  1135
#define IDC_FILES_PROFILE        1334
#define IDC_FILES_PROFILE_NAME   1538
#define IDC_FILES_PROFILE_BROWSE 1748
#define IDC_FILES_SCREEN_LABEL   1136
#define IDC_FILES_SCREEN         1335
#define IDC_FILES_SCREEN_NAME    1539
#define IDC_FILES_SCREEN_BROWSE  1749
#define IDC_FILES_USE            1152
#define IDC_FILES_USE1           1218
#define IDC_FILES_USE2           1219
#define IDC_FILES_USE3           1220
#define IDC_FILES_OK             1740

/* Paper sizes of the user */
#define IDD_SIZES        1008
#define IDC_SIZES_LABEL  1856
#define IDC_SIZES_LIST   1403
#define IDC_SIZES_NEW    1706
#define IDC_SIZES_EDIT   1707
#define IDC_SIZES_DELETE 1708

/* One paper size. The buttons confirm a new and a changed one. */
#define IDD_SIZE              1011
#define IDC_SIZE_NAME_LABEL   1864
#define IDC_SIZE_NAME         1503
#define IDC_SIZE_GROUP        1104
#define IDC_SIZE_WIDTH_LABEL  1865
#define IDC_SIZE_WIDTH        1504
#define IDC_SIZE_WIDTH_SPIN   1622
#define IDC_SIZE_WIDTH_UNIT   1866
#define IDC_SIZE_LENGTH_LABEL 1867
#define IDC_SIZE_LENGTH       1505
#define IDC_SIZE_LENGTH_SPIN  1623
#define IDC_SIZE_LENGTH_UNIT  1868
#define IDC_SIZE_ADD          1710
#define IDC_SIZE_CHANGE       1709

/* Fonts page, in a document's sheet and in the printer's own */
#define IDD_FONTS          1030
#define IDD_DEVICE_FONTS   1031
#define IDC_FONTS_RESIDENT 1807
#define IDC_FONTS_BITMAPS  1810
#define IDC_FONTS_LABEL    1862
#define IDC_FONTS_LIST     1404
#define IDC_FONTS_ADD      1712
#define IDC_FONTS_EDIT     1713
#define IDC_FONTS_DELETE   1714
#define IDC_FONTS_DEFAULTS 1715
#define IDC_FONTS_MANAGER  1750

/* A pair of fonts. Adding has a list of the system's fonts, editing shows the name of one. */
#define IDD_PAIR               1032
#define IDC_PAIR_SYSTEM_LABEL  1881
#define IDC_PAIR_SYSTEM        1319
#define IDC_PAIR_NAME_LABEL    1880
#define IDC_PAIR_NAME          1518
#define IDC_PAIR_HINT          1882
#define IDC_PAIR_PRINTER_LABEL 1883
#define IDC_PAIR_PRINTER       1320
#define IDC_PAIR_OK            1717

/* Watermarks page */
#define IDD_WATERMARKS                    1040
#define IDC_WATERMARKS_LABEL              1869
#define IDC_WATERMARKS_LIST               1405
#define IDC_WATERMARKS_ADD                1718
#define IDC_WATERMARKS_EDIT               1719
#define IDC_WATERMARKS_DELETE             1721
#define IDC_WATERMARKS_PAGES              1105
#define IDC_WATERMARKS_EVERY_PAGE         1203
#define IDC_WATERMARKS_FIRST_PAGE         1204
#define IDC_WATERMARKS_TRANSPARENCY_LABEL 1895
#define IDC_WATERMARKS_TRANSPARENCY       1520
#define IDC_WATERMARKS_TRANSPARENCY_SPIN  1608

/* Both editors of watermarks. The buttons confirm a new and a changed one. */
#define IDC_MARK_PREVIEW  1684 /* frame; only its rectangle counts */
#define IDC_MARK_POSITION 1106
#define IDC_MARK_X_LABEL  1875
#define IDC_MARK_X        1511
#define IDC_MARK_X_SPIN   1624
#define IDC_MARK_X_UNIT   1980
#define IDC_MARK_Y_LABEL  1876
#define IDC_MARK_Y        1512
#define IDC_MARK_Y_SPIN   1625
#define IDC_MARK_Y_UNIT   1981
#define IDC_MARK_ADD      1722
#define IDC_MARK_CHANGE   1723

/* Editor of a text watermark. A colour printer has the group of the colour, another the darkness. */
#define IDD_TEXT_MARK                1041
#define IDC_TEXT_MARK_TEXT_LABEL     1870
#define IDC_TEXT_MARK_TEXT           1507
#define IDC_TEXT_MARK_FONT_LABEL     1871
#define IDC_TEXT_MARK_FONT           1317
#define IDC_TEXT_MARK_SIZE_LABEL     1872
#define IDC_TEXT_MARK_SIZE           1508
#define IDC_TEXT_MARK_SIZE_SPIN      1603
#define IDC_TEXT_MARK_SIZE_UNIT      1979
#define IDC_TEXT_MARK_BOLD           1804
#define IDC_TEXT_MARK_ITALIC         1805
#define IDC_TEXT_MARK_OUTLINE        1806
#define IDC_TEXT_MARK_ANGLE_LABEL    1873
#define IDC_TEXT_MARK_ANGLE          1509
#define IDC_TEXT_MARK_ANGLE_SPIN     1604
#define IDC_TEXT_MARK_DARKNESS_LABEL 1874
#define IDC_TEXT_MARK_DARKNESS       1510
#define IDC_TEXT_MARK_DARKNESS_SPIN  1605
#define IDC_TEXT_MARK_COLOR          1115
#define IDC_TEXT_MARK_COLOR_FRAME    1654 /* only its rectangle counts */
#define IDC_TEXT_MARK_COLOR_CHOOSE   1725

/* Editor of an image watermark */
#define IDD_IMAGE_MARK                 1042
#define IDC_IMAGE_MARK_NAME_LABEL      1894
#define IDC_IMAGE_MARK_NAME            1516
#define IDC_IMAGE_MARK_FILE_LABEL      1878
#define IDC_IMAGE_MARK_FILE            1514
#define IDC_IMAGE_MARK_BROWSE          1754
#define IDC_IMAGE_MARK_SCALE_LABEL     1893
#define IDC_IMAGE_MARK_SCALE           1515
#define IDC_IMAGE_MARK_SCALE_SPIN      1607
#define IDC_IMAGE_MARK_PLACEMENT_LABEL 1147
#define IDC_IMAGE_MARK_PLACEMENT       1357

/* Notices: the second asks, by IDC_OK and IDC_CANCEL. One text may stand in place of the lines. The button
   also closes the About box. */
#define IDD_NOTICE       1090
#define IDD_QUESTION     1091
#define IDC_NOTICE_ICON  1652
#define IDC_NOTICE_LINE1 1921
#define IDC_NOTICE_LINE2 1922
#define IDC_NOTICE_LINE3 1923
#define IDC_NOTICE_LINE4 1924
#define IDC_NOTICE_TEXT  1916
#define IDC_NOTICE_OK    1732

/* About, as a page and as a dialog */
#define IDD_ABOUT_PAGE  1098
#define IDD_ABOUT       1099
#define IDC_ABOUT_LINE1 1896
#define IDC_ABOUT_LINE2 1897
#define IDC_ABOUT_LINE3 1898
#define IDC_ABOUT_LINE4 1899
#define IDC_ABOUT_LINE5 1900
#define IDC_ABOUT_LINE6 1901

#endif
