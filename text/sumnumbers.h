// Summing of numbers in texts: command V7_SumNum.
#pragma once

#include "host/arx.h"

/// Adds up the numbers that selected texts hold, tells the sum, and lets the user place it as a text. An
/// object picked at the first question is brought to the top of the drawing order instead.
void SumNumbers();

namespace sumnumbers {

struct Sum {
    double value = 0.0;
    long count = 0;    ///< texts that are numbers
    int precision = 2; ///< most decimals among them, two at least
};
/// Counts a text when all of it is a decimal number: an optional sign, digits with at most one point, an
/// optional exponent, nothing before or behind, as the host's own conversion has it.
void AddNumber(Sum& sum, const AcString& text);

/// What is told of a sum, of how many selected texts, and the label placed for it.
CString ReportOf(const Sum& sum, long selected);
CString LabelOf(const Sum& sum);

} // namespace sumnumbers
