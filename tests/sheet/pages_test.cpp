/* The pages of a document sheet, worked as their user does. What is clicked and what is then to be seen stands in text
   files; here are the sets of states that no file could list. */
#include <deque>
#include <random>
#include <set>

#include "description/control_ids.h"
#include "settings/checks.h"
#include "support/sheet_script.h"
#include "support/sweep.h"

namespace {

class PagesTest : public SheetScript {};

TEST_F(PagesTest, LayoutPageGoesByItsScript)
{
    Play("layout_page.txt");
}

TEST_F(PagesTest, PaperPageGoesByItsScript)
{
    Play("paper_page.txt");
}

} // namespace
