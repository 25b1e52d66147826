// Benchmarks are reported beside a peer or a physical limit measured in the same run: each
// comparison names our benchmark and the peer's, and the run ends with their speed ratio.
#pragma once

void compareto(const char* ours, const char* peer);

// A benchmark that does part of another's work (the same draws cut short), reported at the end
// as the share of the whole one's time that the part takes.
void shareof(const char* part, const char* whole);
