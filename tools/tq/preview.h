/* The command `tq preview`: the picture that the sheets show of a record, and the lines beside it. */
#ifndef TQUI_TOOLS_TQ_PREVIEW_H
#define TQUI_TOOLS_TQ_PREVIEW_H

#include <iosfwd>
#include <string>
#include <vector>

struct PreviewOptions {
    std::string model;   /* a description file, or a sample's name or section of the INF */
    std::string package; /* folder with the INF */
    std::string language = "0409";
    bool bMetric = false;
    std::string record; /* file of the record; empty: the printer's default */
    std::vector<std::string> assignments;
    std::string text; /* a text watermark in the place of the record's own; empty: none */
    std::string face; /* empty: that of a new watermark; so are the size and the angle below */
    int nSize = 0;    /* points */
    bool bBold = false, bItalic = false, bOutline = false, bRightToLeft = false;
    double dAngle = -1; /* degrees */
    std::string image;  /* an image watermark instead: a bitmap file */
    int nPlacement = 0, nScale = 100;
    std::vector<double> position; /* of either: none, or millimetres to the right and upwards */
    bool bFirstPage = false;      /* the watermark, also the record's own, stands on the first page alone */
    int nFrame = 240;             /* pixels of the frame's sides */
    std::string file;             /* PNG to write */
};

/* Result: the exit code. Throws for what is not to be had. */
int RunPreview(const PreviewOptions& options, std::ostream& out);

#endif
