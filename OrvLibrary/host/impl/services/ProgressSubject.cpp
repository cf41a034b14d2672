#include "OrvLibrary/host/ProgressSubject.h"

ProgressSubject::ProgressSubject() = default;
ProgressSubject::~ProgressSubject() = default;

void ProgressSubject::advanceBytes(std::uint64_t) {}
