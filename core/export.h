#pragma once

// The library is built with hidden symbols; what hosts may call is marked here.
#define QUILLON_API __attribute__((visibility("default")))
