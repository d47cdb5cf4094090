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

struct CommandSignatureEntry {
    const char16_t* name;
    const char* signature;
};

const CommandSignatureEntry kCommandSignatures[] = {
#include "latex/command_signatures.inc"
};

const QHash<QString, const char*>& signatureTable()
{
    static const QHash<QString, const char*> table = [] {
        QHash<QString, const char*> built;
        built.reserve(int(std::size(kCommandSignatures)));
        for (const CommandSignatureEntry& entry : kCommandSignatures)
            built.insert(QString::fromUtf16(entry.name), entry.signature);
        return built;
    }();
    return table;
}

} // namespace

const char* commandSignature(const QString& name)
{
    if (const char* signature = signatureTable().value(name, nullptr))
        return signature;
    switch (commandArgShape(name)) {
    case ArgShape::NoArgs:
        return "";
    case ArgShape::OneArg:
        return "m";
    case ArgShape::TwoArgs:
        return "mm";
    case ArgShape::OptArgThenArg:
        return "om";
    case ArgShape::Special:
    case ArgShape::Unknown:
        break;
    }
    return "g";
}

ArgShape commandArgShape(const QString& name)
{
    return commandArgTable().value(name, ArgShape::Unknown);
}

int commandArgTableSize()
{
    return commandArgTable().size();
}
