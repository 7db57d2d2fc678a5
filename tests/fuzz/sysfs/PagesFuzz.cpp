// Any bytes as a page of a device. The first byte says which parsers get the rest; enclosure pages come as several
// pages one after the other, each with two bytes of length before it. What comes back is held against its limits.
#include "sashba/sysfs/DevicePath.h"
#include "sashba/sysfs/DeviceText.h"
#include "sashba/sysfs/PathInfo.h"
#include "sashba/sysfs/ScsiPages.h"
#include "sashba/sysfs/SesPages.h"
#include "sashba/sysfs/SgDevice.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace KDV;

// A check that no build switches off.
void require(bool holds)
{
    if (!holds) std::abort();
}

ByteView takePage(ByteView& rest)
{
    const std::size_t length = rest.u16(0);
    const ByteView page = rest.part(2, length);
    rest = rest.from(2 + length);
    return page;
}

void vitalProductData(ByteView page)
{
    require(parseUnitSerialNumber(page).size() <= page.size());
    if (const auto name = parseNaaName(page)) require(*name != 0);
    parseRotationRate(page);
    if (const auto ata = parseAtaInformation(page))
        require(ata->serial.size() <= 20 && ata->firmware.size() <= 8 && ata->model.size() <= 40);
    if (const auto inquiry = parseInquiry(page))
        require(inquiry->vendor.size() <= 8 && inquiry->product.size() <= 16 && inquiry->revision.size() <= 4);
}

void logPages(ByteView page)
{
    require(parseSupportedLogPages(page).size() <= page.size());
    if (const auto temperature = parseTemperature(page)) require(*temperature != 0xFF);
    parseEnduranceUsed(page);
    parsePowerOnMinutes(page);
    if (const auto exceptions = parseInformationalExceptions(page))
        require(!(exceptions->predictsFailure() && exceptions->warns()));
}

void enclosurePages(ByteView rest)
{
    const ByteView configuration = takePage(rest);
    const ByteView status = takePage(rest);
    const ByteView descriptors = takePage(rest);
    const auto state = enclosureState(configuration, status, descriptors, takePage(rest));
    if (!state) return;
    require(state->slots.size() == state->bays);
    require(state->fans == 0 || state->fans == 2 || state->fans == 3 || state->fans == 5);
    require(state->power == 0 || state->power == 2 || state->power == 3 || state->power == 5);
    require(state->temperature == 0 || (state->temperature >= 2 && state->temperature <= 4));
    require(state->status == 0 || (state->status >= 2 && state->status <= 4));
}

// Names in a tree: a path is taken apart, and the order of names is an order.
void names(ByteView bytes)
{
    const std::string path(bytes.chars());
    const DevicePath split = splitDevicePath(path);
    for (const std::string* part : {&split.pciFunction, &split.host, &split.hbaPort, &split.expander, &split.device})
        require(path.compare(0, part->size(), *part) == 0);
    const std::string_view left = bytes.part(0, bytes.size() / 2).chars();
    const std::string_view right = bytes.from(bytes.size() / 2).chars();
    require(!naturalLess(left, left));
    require(left == right || naturalLess(left, right) != naturalLess(right, left));
    require(trimmed(left).size() <= left.size());
    if (wholeNumber(left)) require(!left.empty());
}

void texts(ByteView bytes)
{
    if (const auto info = parsePathInfo(bytes.chars())) {
        require(!info->port.empty() || info->box || info->bay);
        require(info->port.size() <= 8 && info->box.value_or(0) < 255 && info->bay.value_or(0) < 255);
    }
    names(bytes);
    const ReadyReply reply = judgeReply(bytes.u8(0), bytes.u8(1), bytes.from(2));
    require(!(reply.timedOut && reply.readiness == Readiness::Ready));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ByteView whole(data, size);
    const ByteView rest = whole.from(1);
    switch (whole.u8(0) & 3) {
    case 0:
        vitalProductData(rest);
        break;
    case 1:
        logPages(rest);
        break;
    case 2:
        enclosurePages(rest);
        break;
    default:
        texts(rest);
        break;
    }
    return 0;
}
