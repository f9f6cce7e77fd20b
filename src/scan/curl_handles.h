#pragma once

#include <memory>

#include <curl/curl.h>

/// Owners of libcurl's objects.
namespace tavek {

template <auto release>
struct CurlRelease {
  template <typename Handle>
  void operator()(Handle* handle) const {
    release(handle);
  }
};

using CurlEasy = std::unique_ptr<CURL, CurlRelease<curl_easy_cleanup>>;
using CurlMulti = std::unique_ptr<CURLM, CurlRelease<curl_multi_cleanup>>;
using CurlList = std::unique_ptr<curl_slist, CurlRelease<curl_slist_free_all>>;
using CurlUrl = std::unique_ptr<CURLU, CurlRelease<curl_url_cleanup>>;
using CurlText = std::unique_ptr<char, CurlRelease<curl_free>>;

}  // namespace tavek
