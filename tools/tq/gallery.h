/* The command `tq gallery`: one contact sheet of what the preview can show, for eyes. */
#ifndef TQUI_TOOLS_TQ_GALLERY_H
#define TQUI_TOOLS_TQ_GALLERY_H

#include <string>

/* Draws on a hosted machine of its own and writes a PNG. Result: the exit code. */
int RunGallery(const std::string& file);

#endif
