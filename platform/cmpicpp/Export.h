// Marks what libKDVCmpiCpp shows to others; everything else in it is hidden. Exception classes must be marked, or a
// catch in another library would not match.
#pragma once

#define KDV_CMPICPP_API __attribute__((visibility("default")))
