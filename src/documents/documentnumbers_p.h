#pragma once

// Numbers as the documents read them. A text that is no number reads 0, and so does one that
// overflows to infinity or spells NaN: no stored scenario holds such values, and the model's
// time and distance sums would carry them into undefined conversions.

#include <QString>
#include <QStringRef>

#include <cmath>

namespace Simulation {

inline double documentDouble(const QStringRef &text)
{
    const double value = text.toDouble();
    return std::isfinite(value) ? value : 0.0;
}

inline double documentDouble(const QString &text)
{
    return documentDouble(QStringRef(&text));
}

inline uint documentUInt(const QStringRef &text)
{
    return text.toUInt(nullptr, 10);
}

} // namespace Simulation
