#pragma once
// The environments whose body is split into rows and cells.

#include <QString>
#include <QStringList>

// The 31 names, in their fixed order; matched exactly.
const QStringList& knownEnvironments();
bool isKnownEnvironment(const QString& name);
