// Benchmarks are reported beside a peer or a physical limit measured in the same run: each
// comparison names our benchmark and the peer's, and the run ends with their speed ratio.
#pragma once

void compareto(const char* ours, const char* peer);
