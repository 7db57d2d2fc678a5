#include "sashba/source/Source.h"

namespace KDV {

Source::~Source() = default;

} // namespace KDV
