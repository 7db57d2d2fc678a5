// A CMPI array of texts from a list of them: owned like every CmpiArray, on the thread that makes it. Throws CmpiStatus
// when the broker refuses.
#pragma once

#include "cmpicpp/CmpiArray.h"
#include "common/KDVUtil.h"

#include <cstddef>
#include <string>
#include <vector>

namespace KDV {

inline CmpiCpp::CmpiArray textArray(const std::vector<std::string>& texts)
{
    CmpiCpp::CmpiArray array =
        CmpiCpp::makeCmpiArray(KDVUtil::getBroker(), static_cast<CMPICount>(texts.size()), CMPI_string);
    for (std::size_t i = 0; i < texts.size(); ++i)
        array.setElementAt(static_cast<CMPICount>(i), texts[i]);
    return array;
}

} // namespace KDV
