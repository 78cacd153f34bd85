// Writes the gallery as PNG files, a contact sheet and one page that needs nothing else:
// gallery <examples folder> <folder to write to> <folder of the scene's BMP files> [<the same from
// the Windows build>]
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>

#include "gallery.h"
#include "lettering.h"
#include "png.h"

namespace {

constexpr int kColumns = 7;  // of the contact sheet: one per format

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

// Small letters and digits, everything else one hyphen: for file names and anchors.
std::string Slug(const std::string& text) {
  std::string slug;
  for (char c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
      slug += c;
    } else if (!slug.empty() && slug.back() != '-') {
      slug += '-';
    }
  }
  while (!slug.empty() && slug.back() == '-') slug.pop_back();
  return slug;
}

std::string Base64(const File& bytes) {
  static constexpr char kDigits[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t left = std::min<size_t>(3, bytes.size() - i);
    uint32_t group = uint32_t{bytes[i]} << 16;
    if (left > 1) group |= uint32_t{bytes[i + 1]} << 8;
    if (left > 2) group |= bytes[i + 2];
    for (size_t digit = 0; digit < 4; ++digit) {
      text += digit <= left ? kDigits[group >> (18 - 6 * digit) & 63] : '=';
    }
  }
  return text;
}

// The code that drew an entry, cut out of the table's own source.
struct Snippet {
  size_t line = 0;
  std::string text;
};

Snippet SnippetOf(const std::string& source, const std::string& title) {
  const size_t entry = source.find('"' + title + '"');
  const size_t body = source.find(") {", source.find("](", entry)) + 3;
  if (entry == std::string::npos || body < entry) throw std::runtime_error("no code: " + title);
  size_t end = body;
  for (int depth = 1;; ++end) {
    depth += source.at(end) == '{' ? 1 : source.at(end) == '}' ? -1 : 0;
    if (depth == 0) break;
  }
  const size_t first = source.find_first_not_of(" \n", body);
  const size_t last = source.find_last_not_of(" \n", end - 1);
  const size_t indent = first - (source.rfind('\n', first) + 1);
  const bool one_line = source.rfind('\n', first) < body;
  Snippet snippet;
  snippet.line = size_t(std::count(source.begin(), source.begin() + ptrdiff_t(first), '\n')) + 1;
  for (size_t at = first; at <= last; ++at) {
    snippet.text += source[at];
    if (source[at] == '\n' && !one_line) {
      at += std::min(indent, source.find_first_not_of(' ', at + 1) - at - 1);
    }
  }
  return snippet;
}

// The format that a result belongs to: the one its caption begins with, else the picture's own. Alpha
// is shown as a grey picture, which says nothing about the format that it comes from.
std::string FormatOf(const Shown& shown) {
  const std::string first_word = shown.caption.substr(0, shown.caption.find_first_of(" ,:"));
  for (const FormatFacts& facts : kFormats) {
    if (first_word == facts.name) return facts.name;
  }
  if (!shown.picture || shown.caption.find("alpha") != std::string::npos) return "";
  return FactsOf(shown.picture->format()).name;
}

std::string FigureOf(const Shown& shown, bool is_result) {
  const std::string format = is_result ? FormatOf(shown) : "";
  std::string figure = "<figure" + (format.empty() ? "" : " data-format=\"" + format + '"') +
                       "><figcaption>" + Escaped(shown.caption) + "</figcaption>";
  if (!shown.picture)
    return figure + "<div class=text>" + Escaped(shown.text) + "</div></figure>\n";
  const HostSurface& picture = *shown.picture;
  return figure + "<img style=\"--w:" + std::to_string(picture.width) +
         "\" width=" + std::to_string(picture.width) + " height=" + std::to_string(picture.height) +
         " alt=\"" + Escaped(shown.caption) + "\" src=\"data:image/png;base64," +
         Base64(PngFileOf(picture)) + "\"></figure>\n";
}

std::string FiguresOf(const std::string& classes, const std::vector<Shown>& all) {
  if (all.empty()) return {};
  const bool are_results = classes == "results" || classes == "matrix";
  std::string figures = "<div class=\"shown " + classes + "\">\n";
  for (const Shown& shown : all) figures += FigureOf(shown, are_results);
  return figures + "</div>\n";
}

std::string CardOf(const Operation& operation, const Rendering& rendering, const Snippet& code) {
  const std::string slug = Slug(operation.title), sentence = operation.sentence;
  const bool irregular = sentence.find("ntended") != std::string::npos;
  return "<article class=card id=\"" + slug + "\" data-family=\"" + Slug(operation.family) +
         "\"><h3><a href=\"#" + slug + "\">" + Escaped(operation.title) + "</a>" +
         (irregular ? "<span class=badge>irregular, intended</span>" : "") + "</h3>\n<p>" +
         Escaped(sentence) + "</p>\n<pre><small>examples/gallery.cc:" + std::to_string(code.line) +
         "</small><code>" + Escaped(code.text) + "</code></pre>\n" +
         FiguresOf("inputs", rendering.inputs) +
         FiguresOf(rendering.results.size() > 2 * kColumns ? "matrix" : "results",
                   rendering.results) +
         "</article>\n";
}

// Every result, seven in a row, under the title of its operation.
class ContactSheet {
 public:
  void Add(const std::string& title, const std::vector<Shown>& results) {
    rows_.push_back({title, {}, kTitleHeight});
    for (size_t i = 0; i < results.size(); ++i) {
      if (i % kColumns == 0) rows_.push_back({{}, {}, 0});
      Row& row = rows_.back();
      const Shown& shown = results[i];
      const int lines = int(std::count(shown.text.begin(), shown.text.end(), '\n')) + 1;
      const int height = shown.picture ? shown.picture->height : lines * kLineHeight;
      row.height = std::max(row.height, height + kLineHeight + kGap);
      row.cells.push_back(shown);
    }
  }

  HostSurface Draw() const {
    int height = kGap;
    for (const Row& row : rows_) height += row.height;
    HostSurface sheet(Format::k24, kGap + kColumns * kCellWidth, height);
    IdxFillRect(sheet, sheet.Bounds(), 0xF4F5F7);
    int top = kGap;
    for (const Row& row : rows_) {
      Write(sheet, {kGap, top + 6}, row.title, 0x1B2130, 2);
      for (size_t i = 0; i < row.cells.size(); ++i) {
        DrawCell(sheet, {kGap + int(i) * kCellWidth, top}, row.cells[i]);
      }
      top += row.height;
    }
    return sheet;
  }

 private:
  static constexpr int kGap = 8, kCellWidth = 136, kTitleHeight = 24, kLineHeight = 8;

  struct Row {
    std::string title;
    std::vector<Shown> cells;
    int height;
  };

  static void DrawCell(HostSurface& sheet, CPunto at, const Shown& shown) {
    Write(sheet, at, shown.caption.substr(0, 32), 0x5C6578, 1);
    at.y += kLineHeight;
    if (!shown.picture) {
      for (size_t start = 0; start <= shown.text.size();) {
        const size_t end = std::min(shown.text.find('\n', start), shown.text.size());
        Write(sheet, at, shown.text.substr(start, end - start), 0x1B2130, 1);
        at.y += kLineHeight;
        start = end + 1;
      }
      return;
    }
    for (int y = 0; y < shown.picture->height; ++y) {
      for (int x = 0; x < shown.picture->width; ++x) {
        SetPixel(sheet, at.x + x, at.y + y, shown.picture->Display(x, y) & 0xFFFFFF);
      }
    }
  }

  std::vector<Row> rows_;
};

std::string FormatsTable() {
  return R"(<section id=formats><h2>The seven formats</h2><div class="card scroll"><table>
<tr><th>format</th><th>bits</th><th>stored pixel</th><th>chosen by depth or red mask</th></tr>
<tr><td>8</td><td>8</td><td>palette index</td><td>bpp 8</td></tr>
<tr><td>565</td><td>16</td><td>red 11-15, green 5-10, blue 0-4</td><td>any other mask</td></tr>
<tr><td>555</td><td>16</td><td>red 10-14, green 5-9, blue 0-4</td><td>mask 0x7C00, no alpha</td></tr>
<tr><td>1555</td><td>16</td><td>alpha 15, then as 555</td><td>mask 0x7C00, alpha</td></tr>
<tr><td>4444</td><td>16</td><td>alpha 12-15, red, green, blue 0-3</td><td>mask 0x0F00</td></tr>
<tr><td>24</td><td>24</td><td>bytes blue, green, red</td><td>bpp 24</td></tr>
<tr><td>32</td><td>32</td><td>bytes blue, green, red, alpha</td><td>bpp 32</td></tr>
</table></div></section>
)";
}

std::string Chip(const std::string& filter, const std::string& value, const std::string& label) {
  return "<button type=button data-filter=" + filter + " value=\"" + value + "\">" +
         Escaped(label) + "</button>";
}

// What the page's script makes work.
std::string Tools() {
  std::string families = Chip("family", "", "all"), formats = Chip("format", "", "all");
  const char* family = "";
  for (const Operation& operation : Operations()) {
    if (std::string(family) == operation.family) continue;
    family = operation.family;
    families += Chip("family", Slug(family), family);
  }
  for (const FormatFacts& facts : kFormats) formats += Chip("format", facts.name, facts.name);
  return "<div id=tools hidden>\n<p class=chips><b>Family</b>" + families +
         "</p>\n<p class=chips><b>Format</b>" + formats +
         "</p>\n<p class=chips><label for=words><b>Find</b></label><input id=words type=search "
         "placeholder=\"a function or a word\"><span id=shown aria-live=polite></span></p>\n"
         "<p id=none hidden>Nothing has all of that. Choose another format or family.</p></div>\n";
}

// The scene's pictures, native and from Windows, and whether they are the same.
std::string SceneSection(const std::string& native, const std::string& windows,
                         const std::string& output) {
  std::vector<Shown> large, small, from_windows;
  size_t same = 0;
  for (const FormatFacts& facts : kFormats) {
    const std::string name = std::string("/scene-") + facts.name;
    File file = ReadFile(native + name + ".bmp");
    const HostSurface picture = LoadBitmap(file, Format::k24);
    const File png = PngFileOf(picture);
    WriteFile(output + name + ".png", png.data(), png.size());
    (facts.format == Format::k32 ? large : small).push_back({facts.name, picture, {}});
    if (windows.empty()) continue;
    File other = ReadFile(windows + name + ".bmp");
    same += other == file;
    from_windows.push_back({facts.name, LoadBitmap(other, Format::k24), {}});
  }
  std::string html =
      "<section id=scene><h2>A scene</h2><article class=card>\n<p>BMP files loaded from memory, "
      "sprites with a colour key, fills, lines, frames, shadows and a flood fill, composed by "
      "examples/scene.cc in each format. At 8 bits the flood fill paints nothing, so the moon "
      "stays hollow.</p>\n" +
      FiguresOf("large", large) + FiguresOf("small", small);
  if (!windows.empty()) {
    const bool results = ReadFile(native + "/digest.txt") == ReadFile(windows + "/digest.txt");
    html +=
        "<h3>The same program on 32-bit Windows</h3>\n<p>scene.exe with pincel.dll, run under "
        "Wine: <span class=same>" +
        std::to_string(same) + " of " + std::to_string(from_windows.size()) +
        " pictures are the native ones byte for byte</span>, and the results below are " +
        (results ? "all the same too" : "<strong>not the same</strong>") + ".</p>\n" +
        FiguresOf("small", from_windows);
  } else {
    html += "<p>The Windows program was left out when this page was made.</p>\n";
  }
  return html + "</article></section>\n";
}

void WriteGallery(const std::string& examples, const std::string& output, const std::string& native,
                  const std::string& windows) {
  const Assets assets(examples);
  const auto text = [&](const char* name) {
    const File file = ReadFile(examples + name);
    return std::string(file.begin(), file.end() - 1);
  };
  const std::string source = text("/gallery.cc");
  std::filesystem::create_directories(output + "/operations");

  ContactSheet sheet;
  std::string index, body;
  const char* family = "";
  size_t pictures = 0;
  for (const Operation& operation : Operations()) {
    const Rendering rendering = operation.render(assets);
    if (std::string(family) != operation.family) {
      if (*family != 0) body += "</section>\n", index += "</ul>\n";
      family = operation.family;
      const std::string title = Escaped(family), slug = Slug(family);
      body += "<section id=\"" + slug + "\"><h2>" + title + "</h2>\n";
      index += "<h2><a href=\"#" + slug + "\">" + title + "</a></h2>\n<ul>\n";
    }
    index += "<li><a href=\"#" + Slug(operation.title) + "\">" + Escaped(operation.title) +
             "</a></li>\n";
    body += CardOf(operation, rendering, SnippetOf(source, operation.title));
    sheet.Add(std::string(operation.family) + ": " + operation.title, rendering.results);
    for (const Shown& shown : rendering.results) {
      if (!shown.picture) continue;
      const File png = PngFileOf(*shown.picture);
      WriteFile(
          output + "/operations/" + Slug(operation.title) + "--" + Slug(shown.caption) + ".png",
          png.data(), png.size());
      ++pictures;
    }
  }
  const File png = PngFileOf(sheet.Draw());
  WriteFile(output + "/contact-sheet.png", png.data(), png.size());

  const std::string page =
      "<!DOCTYPE html>\n<html lang=en><head><meta charset=utf-8>\n"
      "<meta name=viewport content=\"width=device-width, initial-scale=1\">\n"
      "<title>Pincel gallery</title>\n<style>\n" +
      text("/gallery.css") +
      "</style></head><body>\n<nav><a class=name href=\"#top\">Pincel</a>\n"
      "<button type=button id=contents aria-expanded=false>Contents</button>\n"
      "<p class=size>Size<label><input type=radio name=size id=size1>1</label>"
      "<label><input type=radio name=size checked>2</label>"
      "<label><input type=radio name=size id=size3>3</label></p>\n"
      "<h2><a href=\"#scene\">A scene</a></h2><h2><a href=\"#formats\">Formats</a></h2>\n" +
      index +
      "</ul></nav>\n<main id=top>\n<h1>Pincel gallery</h1>\n"
      "<p class=lead>Every operation of the library in every pixel format: what goes in, the call, "
      "what comes out. " +
      std::to_string(Operations().size()) + " entries, " + std::to_string(pictures) +
      " pictures, drawn by the library from real image files when this page was made. Hover over a "
      "result, or tap it, to see what was there before.</p>\n" +
      Tools() + SceneSection(native, windows, output) + FormatsTable() + body +
      "</section>\n<footer>Pictures: examples/assets/SOURCES.md. Irregular behaviours, all of "
      "them: "
      "docs/irregular-behaviour.md.</footer>\n</main>\n<script>\n" +
      text("/gallery.js") + "</script></body></html>\n";
  WriteFile(output + "/index.html", page.data(), page.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4 && argc != 5) {
    std::fprintf(stderr,
                 "usage: gallery <examples folder> <folder to write to> <scene folder> "
                 "[<scene folder of the Windows build>]\n");
    return 2;
  }
  try {
    WriteGallery(argv[1], argv[2], argv[3], argc == 5 ? argv[4] : "");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "gallery: %s\n", error.what());
    return 1;
  }
  return 0;
}
