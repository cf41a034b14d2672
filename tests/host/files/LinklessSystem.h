#pragma once

namespace test {

/// Simulates a file system with neither hard links nor renames that refuse an existing name, until the
/// destructor. Only one object may exist at a time.
class LinklessSystem
{
public:
    LinklessSystem();
    ~LinklessSystem();
    LinklessSystem(const LinklessSystem&) = delete;
    LinklessSystem& operator=(const LinklessSystem&) = delete;
};

} // namespace test
