// The mistakes in a file.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace sim {

// Collects the mistakes in a file.
class Mistakes {
public:
    static constexpr size_t kShown = 40; // columns of a text of the file that is quoted

    // `file` must outlive the object.
    explicit Mistakes(const std::string& file)
        : file_(file)
    {
    }

    // "FILE: PATH: expected EXPECTED, found `found`".
    void add(const std::string& path, const std::string& expected, const Json::Value& found);
    // "FILE: PATH: WHAT".
    void add(const std::string& path, const std::string& what);

    [[nodiscard]] const std::vector<std::string>& list() const { return list_; }

private:
    static constexpr size_t kMax = 20; // later ones are dropped

    const std::string& file_;
    std::vector<std::string> list_;
};

} // namespace sim
