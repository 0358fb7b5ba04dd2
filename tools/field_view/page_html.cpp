#include "page_server.h"

namespace field_view::detail {

namespace {
// Everything the page needs is in it: a browser without any network beyond
// this viewer shows it the same.
constexpr const char* head = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>orvo drawings</title>
<style>
body { margin: 0; background: #202020; color: #e0e0e0; font: 14px sans-serif; }
#status { padding: 4px 8px; }
#field svg { display: block; width: 100%; height: auto; max-height: calc(100vh - 28px); }
</style>
</head>
<body>
<div id="status">connecting</div>
<div id="field">)";

constexpr const char* tail = R"(</div>
<script>
(function () {
  var field = document.getElementById("field");
  var status = document.getElementById("status");
  var state = "connecting", pictures = 0;
  function show() {
    status.textContent = state + ", " + pictures + " pictures/s";
    pictures = 0;
  }
  function connect() {
    var live = new WebSocket("ws://" + location.host + "/live");
    live.onopen = function () { state = "live"; };
    live.onmessage = function (event) {
      field.innerHTML = event.data;
      ++pictures;
    };
    live.onclose = function () {
      state = "viewer gone, retrying";
      setTimeout(connect, 1000);
    };
  }
  setInterval(show, 1000);
  connect();
})();
</script>
</body>
</html>
)";
} // namespace

std::string page_html(const std::string& svg) {
    return head + svg + tail;
}

} // namespace field_view::detail
