#pragma once

#if defined(__GNUC__)
#define ORVML_EXPORT __attribute__((visibility("default")))
#else
#define ORVML_EXPORT
#endif
