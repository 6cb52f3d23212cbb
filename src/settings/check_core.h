/* Inside of the two checks: their cores, which work on plain data and own nothing, and the numbers of the rules.

   A rule's number is group * 10000 + row * 100 + part: the row is its place in the order of its group, the
   part counts within a row of several tests and is 0 where there is only one. */
#ifndef TQUI_SETTINGS_CHECK_CORE_H
#define TQUI_SETTINGS_CHECK_CORE_H

#include "base/wide.h"
#include "description/paper.h"
#include "settings/checks.h"

enum RuleGroup : int {
    PUBLIC_IDENTITY = 1,
    PUBLIC_BITS = 2, /* missing bits of dmFields */
    PUBLIC_FIELDS = 3,
    PRIVATE_IDENTITY = 4,
    PRIVATE_FIELDS = 5
};

constexpr int RuleNumber(RuleGroup group, int nRow, int nPart = 0)
{
    return group * 10000 + nRow * 100 + nPart;
}

/* What became of a record at a rule. */
enum RuleOutcome : int {
    RULE_FORCED = 1, /* a field was set, not counted as a repair */
    RULE_MENDED,     /* a counted repair */
    RULE_LAST,       /* the counted repair that was one too many: the record is refused */
    RULE_REFUSED     /* refused outright */
};

/* Told of each rule that changed or refused the record, in order. No function: nobody is told. */
struct RuleRecorder {
    void (*fnNote)(void* pContext, int nRule, int nOutcome);
    void* pContext;
};

/* ValidatePublicPart and ValidatePrivatePart with a recorder. */
int ValidatePublicPartNoted(PrinterCall& call, DriverDevmode* pRecord, const XpiModel* pModel,
                            RuleRecorder recorder);
int ValidatePrivatePartNoted(PrinterCall& call, PrivateDevmode* pPrivate, const XpiModel* pModel,
                             RuleRecorder recorder);

constexpr int REPAIR_LIMIT = 3; /* the repair with this number refuses the record */

/* The running check. */
struct CheckState {
    int nRepairs;
    RuleRecorder recorder;
};

/* Range of custom paper sizes, both ends included, tenths of a millimetre. */
struct CustomLimits {
    i16 sMinWidth, sMaxWidth, sMinLength, sMaxLength;
};
CustomLimits GetCustomLimits(const XpiModel* pModel);

struct PublicLimits {
    CustomLimits rCustom;
    i32 nMedia; /* rows of the media table */
};
void CollectPublicLimits(const XpiModel* pModel, PublicLimits* pLimits);

/* What the private check needs beside the model. Last rows are -1 for a table without rows. */
struct PrivateLimits {
    const WCHAR* tcXpiPath; /* the description file as the spooler reports it now */
    CustomLimits rCustom;
    u32 ulFontFileSize;
    i32 lColorDataSize;
    i32 lMediaFirst, lMediaCount; /* range of a media index: from 1 with a media table, else 0 to 0 */
    i32 lResolutionLast, lColorModeLast, lScreenLast;
};
void CollectModelLimits(const XpiModel* pModel, PrivateLimits* pLimits); /* all but the path and file sizes */

/* The cores. Result as of the checks; pModel is not null. */
int CheckPublicFields(DriverDevmode* pRecord, const XpiModel* pModel, const PublicLimits& limits,
                      CheckState* pState);
int CheckPrivateFields(PrivateDevmode* pPrivate, const XpiModel* pModel, const PrivateLimits& limits,
                       CheckState* pState);

/* Groups of the private core, in private_check_groups.cpp; 0 when the record is refused there. */
int CheckWatermark(PrivateDevmode* pPrivate, CheckState* pState);
int CheckFrontCover(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState);
int CheckBackCover(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState);
int CheckColorSlices(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState);
int CheckColorCommands(PrivateDevmode* pPrivate, const PrivateLimits& limits, CheckState* pState);
int CheckFeatureSlots(PrivateDevmode* pPrivate, const XpiModel* pModel, CheckState* pState);
int CheckColorOptions(PrivateDevmode* pPrivate, const XpiModel* pModel, CheckState* pState);
int CheckExceptionRegion(PrivateDevmode* pPrivate, const XpiModel* pModel, CheckState* pState);

/* 1 for a model with a body. One without comes of a file that is empty or could not be read: held against its
   zeros, a good record would be mended to nothing. */
inline int HasBody(const XpiModel* pModel)
{
    return pModel && ModelBodyBytes(pModel) > 0;
}

/* 1 for a code that a paper field may hold, and for a size within the limits. */
constexpr int IsPaperCode(i16 sCode)
{
    return (sCode >= 1 && sCode < FIRST_UNKNOWN_CODE) || sCode >= USER_SIZED_PAPER;
}

constexpr int SizeFits(const CustomLimits& limits, i16 sWidth, i16 sLength)
{
    return sWidth >= limits.sMinWidth && sWidth <= limits.sMaxWidth && sLength >= limits.sMinLength &&
           sLength <= limits.sMaxLength;
}

/* A paper of a scaled, cover or separator page: the paper of the job, or a code with a size that fits. */
constexpr int PaperFits(const CustomLimits& limits, u16 usCode, i16 sWidth, i16 sLength)
{
    return usCode == PAPER_OF_JOB ||
           (IsPaperCode(static_cast<i16>(usCode)) && SizeFits(limits, sWidth, sLength));
}

/* Tells the recorder. */
void NoteRule(const CheckState* pState, int nRule, int nOutcome);

/* Counts a repair and tells it; 1 when it was one too many. */
int CountRepair(CheckState* pState, int nRule);

/* The build that measures the tests leaves out the one rule that the environment names. */
#ifdef TQUI_MUTATE
int RuleIsOn(int nRule);
#else
constexpr int RuleIsOn(int)
{
    return 1;
}
#endif

/* One line a rule: the condition that is good on the left, what happens otherwise on the right. Macros, since
   the first two must leave the function; pState is the check that runs. */
#define MEND(nRule, bGood, repair) \
    do { \
        if (RuleIsOn(nRule) && !(bGood)) { \
            repair; \
            if (CountRepair(pState, nRule)) { \
                return 0; \
            } \
        } \
    } while (0)
#define REQUIRE(nRule, bGood) \
    do { \
        if (RuleIsOn(nRule) && !(bGood)) { \
            NoteRule(pState, nRule, RULE_REFUSED); \
            return 0; \
        } \
    } while (0)
#define FORCE(nRule, bGood, repair) \
    do { \
        if (RuleIsOn(nRule) && !(bGood)) { \
            repair; \
            NoteRule(pState, nRule, RULE_FORCED); \
        } \
    } while (0)

#endif
