/* What the help file has to say: the contract with its author. docs/integrating.md lists it. */
#ifndef TQUI_SHEET_HELP_TOPICS_H
#define TQUI_SHEET_HELP_TOPICS_H

#include "platform/basic.h"

/* A control and the number of its topic, in the form that the help control reads. */
struct HelpTopic {
    DWORD dwControl, dwTopic;
};

/* The map, which a pair of zeros ends. */
constexpr int HELP_TOPIC_COUNT = 397;
extern const HelpTopic aHelpTopics[];

/* The stream of the help file that has the texts of the topics by number. */
constexpr const WCHAR* wcTopicTexts = TEXT("veldtopics.txt");

/* The topic of a page by its help key, a path within the help file; null for a page without one. */
const WCHAR* FindPageTopic(int nKey);

#endif
