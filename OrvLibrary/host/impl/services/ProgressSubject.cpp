#include "OrvLibrary/host/ProgressSubject.h"

ProgressSubject::ProgressSubject() = default;
ProgressSubject::~ProgressSubject() = default;
