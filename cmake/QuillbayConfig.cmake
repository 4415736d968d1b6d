# Deployment configuration: fixed at build time, never read at run time.
# The development defaults point every service at loopback and share a key
# with the reference services in services/.
set(QUILLBAY_BUNDLE_IDENTIFIER "app.quillbay.Quillbay" CACHE STRING "Bundle identifier, prefix of the log categories")
set(QUILLBAY_RELEASE_FEED_URL "https://xcodereleases.com/data.json" CACHE STRING "Public Xcode release feed")
set(QUILLBAY_RELEASE_FEED_SITE "https://xcodereleases.com" CACHE STRING "Site of the release feed")
set(QUILLBAY_CATALOG_URL "http://127.0.0.1:8765" CACHE STRING "Catalog service base address")
set(QUILLBAY_CATALOG_KEY "quillbay-development-catalog-signing-key-0123456789abcdef0123456" CACHE STRING
    "Catalog request signing key (64 bytes)")
set(QUILLBAY_UPDATE_URL "http://127.0.0.1:8765" CACHE STRING "Update service base address")
set(QUILLBAY_UPDATE_SECRET "quillbay-development-update-secret-0123456789abcdef0123456789abc" CACHE STRING
    "Update service signing secret (64 bytes)")
# Build folders configured before the secret had to be 64 bytes still hold the short
# development value; move them to the current one rather than failing.
if(QUILLBAY_UPDATE_SECRET STREQUAL "quillbay-development-update-secret")
    set(QUILLBAY_UPDATE_SECRET "quillbay-development-update-secret-0123456789abcdef0123456789abc" CACHE STRING
        "Update service signing secret (64 bytes)" FORCE)
endif()
set(QUILLBAY_APP_ID "app.quillbay.Quillbay" CACHE STRING "Application identifier sent to the update service")
set(QUILLBAY_SUPPORT_EMAIL "support@quillbay.app" CACHE STRING "Feedback address")
set(QUILLBAY_SUPPORT_URL "https://quillbay.app/support" CACHE STRING "Help & Support page")

string(LENGTH "${QUILLBAY_CATALOG_KEY}" _keyLength)
if(NOT _keyLength EQUAL 64)
    message(FATAL_ERROR "QUILLBAY_CATALOG_KEY must be 64 bytes, it is ${_keyLength}")
endif()
string(LENGTH "${QUILLBAY_UPDATE_SECRET}" _secretLength)
if(NOT _secretLength EQUAL 64)
    message(FATAL_ERROR "QUILLBAY_UPDATE_SECRET must be 64 bytes, it is ${_secretLength}")
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()
