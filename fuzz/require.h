#pragma once

// A broken invariant is a crash for the fuzzer, with the input kept.
inline void require(bool condition)
{
    if (!condition)
        __builtin_trap();
}
