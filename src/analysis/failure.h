#pragma once

#include <QtGlobal>

#include <stdexcept>

namespace zf {

// A run-time failure inside an analysis run (a 16-bit overflow, a text over the helpers'
// limit). The run catches it at its top and ends quietly with what it has written so far.
class AnalysisFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Scores and counters are 16-bit signed; an overflow ends the run instead of wrapping.
inline void addChecked(qint16& target, int amount)
{
    const int sum = int(target) + amount;
    if (sum > 32767 || sum < -32768)
        throw AnalysisFailure("16-bit overflow");
    target = qint16(sum);
}

// Counts text positions in 16 bits as the helpers do; longer texts are a failure.
constexpr qsizetype MaxHelperTextLength = 32767;
// Positions in the line list are 16-bit as well.
constexpr qsizetype MaxLinePosition = 32767;

} // namespace zf
