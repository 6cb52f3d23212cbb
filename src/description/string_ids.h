/* Numbers of the strings of the language libraries (IDS_), by page and dialog. The texts of controls are not here:
   control_ids.h says why. Macros only, since the sources of the libraries include this. */
#ifndef TQUI_DESCRIPTION_STRING_IDS_H
#define TQUI_DESCRIPTION_STRING_IDS_H

/* Paper names of an installation without a description */
#define IDS_LETTER 121
#define IDS_A4     129

/* Titles of pages */
#define IDS_TITLE_LAYOUT     1002
#define IDS_TITLE_PAPER      1003
#define IDS_TITLE_QUALITY    1004
#define IDS_TITLE_FONTS      1030
#define IDS_TITLE_WATERMARKS 1040
#define IDS_TITLE_ABOUT      1099 /* also of the dialog */

/* Titles of dialogs */
#define IDS_TITLE_SIZES         1008
#define IDS_TITLE_NEW_SIZE      1011
#define IDS_TITLE_EDIT_SIZE     1012
#define IDS_TITLE_FILES         1021
#define IDS_TITLE_ADD_PAIR      1031
#define IDS_TITLE_EDIT_PAIR     1032
#define IDS_TITLE_NEW_MARK      1041 /* of both editors of watermarks */
#define IDS_TITLE_EDIT_MARK     1042
#define IDS_TITLE_OPTIONS       1062
#define IDS_TITLE_FIXED_OPTIONS 1063 /* of a mode whose options cannot be changed */

/* Titles of notices */
#define IDS_TITLE_CONFLICT    1090
#define IDS_TITLE_PAPER_SIZE  1091
#define IDS_TITLE_OUTLINE     1092
#define IDS_TITLE_NAME        1093
#define IDS_TITLE_NOT_PRINTED 1097

/* Labels whose text has no control of the same number */
#define IDS_ADD         1752 /* of IDC_SIZE_ADD, IDC_MARK_ADD and, for a new pair, IDC_PAIR_OK */
#define IDS_CHOOSE      1755 /* of IDC_TEXT_MARK_COLOR_CHOOSE */
#define IDS_SYSTEM_FONT 1879 /* of IDC_PAIR_SYSTEM_LABEL and IDC_PAIR_NAME_LABEL */
#define IDS_VERSION     1918 /* before the number in the About box */

/* Units. The two must differ, since the editors distinguish the units by these texts. */
#define IDS_UNIT_INCH 2455
#define IDS_UNIT_MM   2456

/* Layout page: IDC_LAYOUT_TYPE */
#define IDS_LAYOUT_PAGES   2752
#define IDS_LAYOUT_POSTER  2753
#define IDS_LAYOUT_BOOKLET 2754

/* IDC_LAYOUT_PAGES */
#define IDS_PAGES_1  2320
#define IDS_PAGES_2  2321
#define IDS_PAGES_4  2323
#define IDS_PAGES_9  2326
#define IDS_PAGES_16 2327

/* IDC_LAYOUT_ORDER */
#define IDS_ORDER_RIGHT_DOWN    2330
#define IDS_ORDER_RIGHT_UP      2331
#define IDS_ORDER_LEFT_DOWN     2332
#define IDS_ORDER_LEFT_UP       2333
#define IDS_ORDER_DOWN_RIGHT    2334
#define IDS_ORDER_UP_RIGHT      2335
#define IDS_ORDER_DOWN_LEFT     2336
#define IDS_ORDER_UP_LEFT       2337
#define IDS_ORDER_LEFT_TO_RIGHT 2338 /* two pages beside each other */
#define IDS_ORDER_RIGHT_TO_LEFT 2339
#define IDS_ORDER_TOP_TO_BOTTOM 2340 /* two pages one below the other */
#define IDS_ORDER_BOTTOM_TO_TOP 2341

/* IDC_LAYOUT_POSTER: sheets across and down */
#define IDS_POSTER_OFF 2370
#define IDS_POSTER_2   2371
#define IDS_POSTER_3   2372
#define IDS_POSTER_4   2373

/* Paper page: IDC_PAPER_TARGET */
#define IDS_NO_TARGET 2000

/* IDC_PAPER_MEDICAL, and the message box that follows a change */
#define IDS_MEDICAL_OFF       2755
#define IDS_MEDICAL_PORTRAIT  2756
#define IDS_MEDICAL_LANDSCAPE 2757
#define IDS_MEDICAL_TITLE     2758
#define IDS_MEDICAL_TEXT      2759

/* Quality page: IDC_QUALITY_CORRECTION */
#define IDS_MODE_SYSTEM  2201
#define IDS_MODE_OWN     2202
#define IDS_MODE_PRINTER 2203
#define IDS_MODE_FIXED   2204

/* IDC_QUALITY_INTENT */
#define IDS_INTENT_PERCEPTUAL 2205
#define IDS_INTENT_SATURATED  2206
#define IDS_INTENT_RELATIVE   2207
#define IDS_INTENT_ABSOLUTE   2208

/* Options of a colour mode: a value without a name of its own */
#define IDS_OPTION_DEFAULT 2224

/* IDC_FILES_PROFILE */
#define IDS_PROFILE_BUILT_IN 2425
#define IDS_PROFILE_NONE     2426
#define IDS_PROFILE_FILE     2427

/* IDC_FILES_SCREEN */
#define IDS_SCREEN_BUILT_IN 2428
#define IDS_SCREEN_FILE     2429

/* First row of IDC_WATERMARKS_LIST; only row of an empty IDC_PAIR_PRINTER */
#define IDS_NO_WATERMARK    2300
#define IDS_NO_PRINTER_FONT 2310

/* IDC_IMAGE_MARK_PLACEMENT */
#define IDS_PLACE_CENTRE       2517
#define IDS_PLACE_TILED        2518
#define IDS_PLACE_TOP          2519
#define IDS_PLACE_RIGHT        2520
#define IDS_PLACE_BOTTOM       2521
#define IDS_PLACE_LEFT         2522
#define IDS_PLACE_TOP_LEFT     2523
#define IDS_PLACE_TOP_RIGHT    2524
#define IDS_PLACE_BOTTOM_LEFT  2525
#define IDS_PLACE_BOTTOM_RIGHT 2526

/* Files and their dialogs */
#define IDS_SETTINGS_EXTENSION 2420 /* of settings files and presets, without a dot */
#define IDS_FILTER_ALL         2423
#define IDS_FILTER_IMAGES      2424

/* Presets */
#define IDS_PRESET_FACTORY 2631

/* Lines of notices, each group read one below the other. IDS_ENTRY_REFUSED is also the only line of
   IDS_TITLE_NAME. */
#define IDS_OUTLINE_LINE1     2505
#define IDS_OUTLINE_LINE2     2506
#define IDS_OUTLINE_LINE3     2507
#define IDS_OUTLINE_LINE4     2508
#define IDS_ENTRY_REFUSED     2509
#define IDS_CONFLICT_LINE2    2510
#define IDS_CONFLICT_LINE3    2511
#define IDS_CONFLICT_LINE4    2512
#define IDS_NOT_PRINTED_LINE1 2529
#define IDS_NOT_PRINTED_LINE2 2530
#define IDS_NOT_PRINTED_LINE3 2531
#define IDS_NOT_PRINTED_LINE4 2532

/* Formats of four numbers: whole inches, hundredths, whole millimetres, tenths */
#define IDS_LEAST_WIDTH    2513
#define IDS_LARGEST_WIDTH  2514
#define IDS_LEAST_LENGTH   2515
#define IDS_LARGEST_LENGTH 2516

/* Status lines of the preview. The first two are formats of one number. */
#define IDS_STATUS_COPIES             2601
#define IDS_STATUS_COLLATED           2602
#define IDS_STATUS_REVERSE            2603
#define IDS_STATUS_FRONT_COVER        2604
#define IDS_STATUS_FRONT_COVER_EMPTY  2605
#define IDS_STATUS_BACK_COVER         2606
#define IDS_STATUS_BACK_COVER_EMPTY   2614
#define IDS_STATUS_SEPARATORS         2607
#define IDS_STATUS_SEPARATORS_PRINTED 2608
#define IDS_STATUS_LONG_EDGE          2609
#define IDS_STATUS_SHORT_EDGE         2610
#define IDS_STATUS_BOOKLET            2611
#define IDS_STATUS_SCALED             2612
#define IDS_STATUS_MONOCHROME         2613

#endif
