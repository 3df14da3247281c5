#pragma once

// Everything is built with hidden visibility; what crosses a library boundary says so.
#define VEL_EXPORT __attribute__((visibility("default")))
