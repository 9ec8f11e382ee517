// Saying what is wrong: once, and with everything that is.
#pragma once

#include <string>
#include <vector>

#include <velmora/utils/errors.hpp>
#include <velmora/utils/texts.hpp>

/// What the user asked for is not done, and the message says why.
class Refused : public velmora::ValueError {
public:
    using ValueError::ValueError;
};

[[noreturn]] inline void refuse(const std::string& why) {
    throw Refused(why);
}

/// Calls `step` with each of `all`, then refuses, with a line for every ValueError, if there were
/// any.
template <class All, class Step>
void refuse_together(const All& all, Step step) {
    std::vector<std::string> wrong;
    for (const auto& each : all) {
        try {
            step(each);
        } catch (const velmora::ValueError& error) {
            wrong.push_back(error.message());
        }
    }
    if (!wrong.empty()) refuse(velmora::utils::joined(wrong, "\n"));
}
