#pragma once

#include <memory>

namespace quillbay {

// Asks the platform to invite a store review. The program never learns whether the
// invitation was shown or what the user did.
class ReviewRequest
{
public:
    virtual ~ReviewRequest() = default;
    virtual void requestReview() = 0;

    static std::unique_ptr<ReviewRequest> createSystem();
};

} // namespace quillbay
