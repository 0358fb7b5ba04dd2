#include "page_server.h"

namespace field_view::detail {

namespace {
// Everything the page needs is in it: a browser without any network beyond
// this viewer shows it the same.
constexpr const char* head = R"page(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>orvo live</title>
<style>
body { margin: 0; background: #202020; color: #e0e0e0; font: 14px sans-serif; }
#game { display: none; padding: 6px 8px 0; font-size: 20px; }
#game .score { font-weight: bold; }
#game .mode { font-size: 15px; color: #c0c0c0; }
#status { padding: 4px 8px; }
#field svg { display: block; width: 100%; height: auto; max-height: calc(100vh - 28px); }
body.game #field svg { max-height: calc(100vh - 70px); }
</style>
</head>
<body>
<div id="game"><span class="score"></span> <span class="mode"></span></div>
<div id="status">connecting</div>
<div id="field">)page";

// The header shows what the picture carries of the game. In a window taller
// than wide (a phone held upright) the field is turned a quarter so that it
// fills the screen, each text turned back to stay readable, and the caption
// moves into the status line.
constexpr const char* tail = R"page(</div>
<script>
(function () {
  var field = document.getElementById("field");
  var status = document.getElementById("status");
  var game = document.getElementById("game");
  var state = "connecting", pictures = 0, caption = "";
  function header(svg) {
    var d = svg.dataset;
    document.body.classList.toggle("game", !!d.clock);
    if (!d.clock) { game.style.display = "none"; return; }
    game.style.display = "block";
    game.querySelector(".score").textContent = (d.teamLeft || "left") + " " + d.scoreLeft +
      " : " + d.scoreRight + " " + (d.teamRight || "right");
    game.querySelector(".mode").textContent = d.mode + " \u00b7 " + d.clock +
      " \u00b7 half " + d.half;
  }
  function bigger(mark, circle, factor) {
    var x = circle.getAttribute("cx"), y = circle.getAttribute("cy");
    mark.setAttribute("transform", "translate(" + x + " " + y + ") scale(" + factor +
      ") translate(" + -x + " " + -y + ")");
  }
  function upright(svg) {
    caption = "";
    if (window.innerHeight <= window.innerWidth) { return; }
    var text = svg.querySelector("text.caption");
    if (text) { caption = text.textContent; text.remove(); }
    var w = svg.getAttribute("width"), h = svg.getAttribute("height");
    var turned = document.createElementNS("http://www.w3.org/2000/svg", "g");
    turned.setAttribute("transform", "translate(" + h + " 0) rotate(90)");
    while (svg.firstChild) { turned.appendChild(svg.firstChild); }
    svg.appendChild(turned);
    svg.setAttribute("viewBox", "0 0 " + h + " " + w);
    svg.setAttribute("width", h);
    svg.setAttribute("height", w);
    turned.querySelectorAll("text").forEach(function (t) {
      t.setAttribute("transform", "rotate(-90 " + t.getAttribute("x") + " " +
        (t.getAttribute("y") - 5) + ")");
    });
    // A narrow screen shrinks the picture: robots and ball are drawn larger.
    turned.querySelectorAll("g.robot").forEach(function (r) {
      bigger(r, r.querySelector("circle"), 1.6);
    });
    turned.querySelectorAll("circle.ball").forEach(function (b) { bigger(b, b, 1.5); });
  }
  function arrived(picture) {
    field.innerHTML = picture;
    var svg = field.querySelector("svg");
    if (svg) { header(svg); upright(svg); }
  }
  function show() {
    status.textContent = state + ", " + pictures + " pictures/s" + (caption ? " \u00b7 " + caption : "");
    pictures = 0;
  }
  function connect() {
    var live = new WebSocket("ws://" + location.host + "/live");
    live.onopen = function () { state = "live"; };
    live.onmessage = function (event) {
      arrived(event.data);
      ++pictures;
    };
    live.onclose = function () {
      state = "viewer gone, retrying";
      setTimeout(connect, 1000);
    };
  }
  arrived(field.innerHTML);
  setInterval(show, 1000);
  connect();
})();
</script>
</body>
</html>
)page";
} // namespace

std::string page_html(const std::string& svg) {
    return head + svg + tail;
}

} // namespace field_view::detail
