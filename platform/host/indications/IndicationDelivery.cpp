// The half of IndicationService that runs on providers' threads.
#include "hostschema/SchemaName.h"
#include "hostxml/InstanceWriter.h"
#include "indications/IndicationService.h"
#include "indications/IndicationText.h"
#include "indications/QueryCompiler.h"

#include <algorithm>

namespace KDV::Host {

namespace {

// Set for each destination anew, so not part of what all of them share.
bool isPerDestination(std::string_view name)
{
    return sameName(name, "IndicationFilterName") || sameName(name, "SequenceContext") ||
           sameName(name, "SequenceNumber");
}

std::vector<std::string> propertiesToWrite(const InstanceObject& indication, const std::vector<std::string>& selected)
{
    std::vector<std::string> names;
    for (const PropertyEntry& entry : indication.properties()) {
        const std::string& name = entry.property->name;
        const auto same = [&](const std::string& one) { return sameName(one, name); };
        if (!isPerDestination(name) && (selected.empty() || std::any_of(selected.begin(), selected.end(), same)))
            names.push_back(name);
    }
    return names;
}

} // namespace

std::shared_ptr<const IndicationService::Active> IndicationService::active()
{
    const Lock lock(_activeMutex);
    return _active;
}

unsigned IndicationService::followers()
{
    const auto now = active();
    return now->stream ? now->stream->followers() : 0;
}

Outcome IndicationService::deliver(const CMPIContext*, std::string_view nameSpace, const InstanceObject& indication)
try {
    const std::shared_ptr<const Active> now = active();
    if (!now->anybody) return {CMPI_RC_ERR_FAILED, "nobody has asked for indications"};
    exportTo(*now, nameSpace, indication);
    if (!_options.journal.empty()) _journal.send(indicationFields(_options.identifier, nameSpace, indication));
    if (now->stream && now->stream->followers() != 0)
        now->stream->publish(indicationLine(nameSpace, indication, _options.microseconds()));
    return {};
} catch (const std::exception& error) {
    _log.error("an indication was lost: %s", error.what());
    return {CMPI_RC_ERR_FAILED, error.what()};
}

void IndicationService::exportTo(const Active& active, std::string_view nameSpace, const InstanceObject& indication)
{
    const Namespace* delivered = _broker.repository().findNamespace(nameSpace);
    const InstanceSource source(indication);
    std::map<std::vector<std::string>, std::shared_ptr<const std::string>> texts; // by selected properties
    for (const Match& match : active.matches) {
        const bool here =
            std::find(match.nameSpaces.begin(), match.nameSpaces.end(), delivered) != match.nameSpaces.end();
        if (!here || _options.microseconds() >= match.expires || !match.query->matches(source)) continue;
        auto& text = texts[match.query->selected()];
        if (!text) text = instanceText(nameSpace, indication, match.query->selected());
        match.queue->put({text, match.filterName, match.subscription, match.giveUpAfter});
    }
}

std::shared_ptr<const std::string> IndicationService::instanceText(std::string_view nameSpace,
                                                                   const InstanceObject& indication,
                                                                   const std::vector<std::string>& selected)
{
    ReplyBuffer out(4096);
    InstanceWriter writer(out, _fragments, _options.systemName, nameSpace);
    writer.setSelection(PropertySelection(propertiesToWrite(indication, selected)));
    writer.instance(indication);
    const std::string_view whole = out.view();
    return std::make_shared<const std::string>(whole.substr(0, whole.rfind("</INSTANCE>")));
}

} // namespace KDV::Host
