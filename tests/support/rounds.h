#pragma once

#ifndef __has_feature
#define __has_feature(name) 0
#endif

/// How many of so many drawn cases a test goes through: under the sanitizers, where each takes several times as long, a
/// quarter, since they look for what nearly every case has.
constexpr int rounds(int count)
{
#if __has_feature(address_sanitizer) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return count / 4;
#else
    return count;
#endif
}
