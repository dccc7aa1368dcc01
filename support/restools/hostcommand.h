// Running the host's own commands with answers to their prompts.
#pragma once

#include "restools/entity.h"
#include "restools/entpicks.h"

#include <initializer_list>
#include <string>
#include <variant>

/// The name of a host command, or an answer to one of its prompts. An empty text is Enter.
class CommandAnswer {
public:
    CommandAnswer(const ACHAR* text) : mValue(text) {}
    CommandAnswer(double value) : mValue(value) {}
    CommandAnswer(int value) : mValue(value) {}
    CommandAnswer(const AcGePoint3d& point) : mValue(point) {}
    CommandAnswer(const CEntity& entity) : mValue(entity) {}
    /// The set must live as long as the answer.
    CommandAnswer(const CEntPicks& picks) : mValue(&picks) {}

    /// As a result buffer of its own.
    resbuf* NewBuffer() const;

private:
    std::variant<const ACHAR*, double, int, AcGePoint3d, CEntity, const CEntPicks*> mValue;
};

/// Gives the host's result code.
QDV_EXPORT int RunHostCommand(std::initializer_list<CommandAnswer> answers);
