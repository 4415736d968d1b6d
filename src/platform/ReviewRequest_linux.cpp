#include "platform/ReviewRequest.h"

namespace quillbay {

namespace {

// Without a store there is nobody to ask; the request is dropped, as a store that
// declines to show its invitation would drop it.
class NoStoreReviewRequest final : public ReviewRequest
{
public:
    void requestReview() override { }
};

} // namespace

std::unique_ptr<ReviewRequest> ReviewRequest::createSystem()
{
    return std::make_unique<NoStoreReviewRequest>();
}

} // namespace quillbay
