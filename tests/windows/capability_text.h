/* The answers of DrvDeviceCapabilities as text, one line a question: number, result (unsigned), the bytes of
   the rows in hexadecimal ("-" without rows). The companion tool writes the same lines from the hosted build.
 */
#ifndef TQUI_TESTS_WINDOWS_CAPABILITY_TEXT_H
#define TQUI_TESTS_WINDOWS_CAPABILITY_TEXT_H

#include <functional>
#include <string>
#include <vector>

constexpr int nCapabilityQuestions = 35;

/* Asks one question: number and output block (null to count), as the export does. */
using CapabilityCall = std::function<int(int nQuestion, void* pOut)>;

/* Bytes of one row of a question's answer; 0 for questions without rows. */
size_t CapabilityRowSize(int nQuestion);

/* All 35 lines. Each question with rows is asked twice, for the count and for the rows, into a zeroed block.
   What goes wrong in the asking (another count, a write behind the rows) stands in the line in place of the
   bytes, so that it differs from every good line. */
std::vector<std::string> CapabilityLines(const CapabilityCall& call);

#endif
