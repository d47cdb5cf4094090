#pragma once
// Lets test failures show QString values as UTF-8 text.

#include <QString>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}
