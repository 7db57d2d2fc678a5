// Marks what libKDVLogger shows to others; everything else in it is hidden.
#pragma once

#define KDV_LOGGER_API __attribute__((visibility("default")))
