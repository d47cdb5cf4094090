#include "latex/command_args.h"

#include <QHash>

namespace {

struct CommandArgEntry {
    const char16_t* name;
    ArgShape shape;
};

const CommandArgEntry kCommandArgs[] = {
#include "latex/command_args.inc"
};

const QHash<QString, ArgShape>& commandArgTable()
{
    static const QHash<QString, ArgShape> table = [] {
        QHash<QString, ArgShape> built;
        built.reserve(int(std::size(kCommandArgs)));
        for (const CommandArgEntry& entry : kCommandArgs)
            built.insert(QString::fromUtf16(entry.name), entry.shape);
        return built;
    }();
    return table;
}

} // namespace

ArgShape commandArgShape(const QString& name)
{
    return commandArgTable().value(name, ArgShape::Unknown);
}

int commandArgTableSize()
{
    return commandArgTable().size();
}
