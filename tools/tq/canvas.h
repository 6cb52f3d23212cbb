/* A white picture on the hosted machine to draw on by the library's own calls, written as PNG. The machine runs. */
#ifndef TQUI_TOOLS_TQ_CANVAS_H
#define TQUI_TOOLS_TQ_CANVAS_H

#include <filesystem>
#include <string>

#include "platform/glyphs.h"

class Canvas {
  public:
    Canvas(int nWidth, int nHeight);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC Context() const { return hDc; }
    /* One line of text from a top left corner, in a font that is easy to read. */
    void Write(int x, int y, const std::string& text);
    /* Throws std::runtime_error when the file cannot be written. */
    void Save(const std::filesystem::path& path) const;

  private:
    HDC hDc;
    HBITMAP hBitmap;
    HFONT hFont;
    HGDIOBJ hBitmapBefore;
};

#endif
