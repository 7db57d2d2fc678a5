// The messages of DSP0200 and DSP0201 between this server and a listener: the request that carries one indication, and
// what its answer means. Pure functions; whatever a listener sends is understood or reported, never trusted.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace KDV::Host {

enum class ExportOutcome {
    Delivered,
    Later,   // try again: nobody there, no answer, a busy listener
    Refused, // this message will never be taken
};

struct ExportAnswer {
    ExportOutcome outcome = ExportOutcome::Later;
    std::string reason; // for the log; empty when delivered
};

// What differs from subscription to subscription: written behind the properties that all of them share.
std::string exportTail(std::string_view filterName, std::string_view sequenceContext, std::uint64_t sequenceNumber);
// `instance` is an INSTANCE element without its end tag.
std::string exportMessage(std::string_view messageId, std::string_view instance, std::string_view tail);

ExportAnswer readExportAnswer(long httpStatus, std::string_view body, std::string_view messageId);

} // namespace KDV::Host
