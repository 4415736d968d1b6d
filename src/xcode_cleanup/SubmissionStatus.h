#pragma once

namespace quillbay {

// Whether an archive was uploaded: any upload that reached "success", uploads that all
// failed, or no record of distribution at all.
enum class SubmissionStatus { success, failure, undefined };

} // namespace quillbay
