#pragma once
// Text comparison regardless of case, folding through the current locale's
// tolower/toupper tables.

// 0 if equal regardless of case, else the difference of the lower-cased
// characters at the first place they differ (a shorter text counts its end as 0).
int strcaseicmp(const char* a, const char* b);

// As strcaseicmp over at most the first n characters; n == 0 gives 0.
int strcaseincmp(const char* a, const char* b, unsigned n);

// The first place in text where part occurs regardless of case, or null.
const char* strcaseistr(const char* text, const char* part);
