// Background files in the tests: files kept in memory under their Windows
// names, and a background surface that records what it is asked to draw.
#pragma once
#include <map>
#include <string>
#include <vector>

#include "map/background_files.h"
#include "map_capture.h"

inline std::map<std::wstring, std::string> MemoryFiles;

struct MemoryReader {
  std::string Bytes;
  MemoryBytes Source;
};

inline int MemoryReaderFill(void* context, char* buffer, int capacity) {
  return FillFromMemory(&static_cast<MemoryReader*>(context)->Source, buffer, capacity);
}

inline bool MemoryOpenForReading(const wchar_t* path, InputStream& in) {
  auto found = MemoryFiles.find(path);
  if (found == MemoryFiles.end()) return false;
  MemoryReader* reader = new MemoryReader{found->second, {nullptr, 0, 0}};
  reader->Source = {reader->Bytes.data(), reader->Bytes.size(), 0};
  OpenInputStream(in, MemoryReaderFill, reader);
  return true;
}

inline void MemoryCloseReading(InputStream& in) {
  delete static_cast<MemoryReader*>(in.Context);
}

inline void MemoryFlush(void* context, const char* bytes, int count) {
  MemoryFiles[*static_cast<std::wstring*>(context)].append(bytes, (size_t)count);
}

inline bool MemoryOpenForWriting(const wchar_t* path, OutputStream& out) {
  MemoryFiles[path].clear();
  OpenOutputStream(out, MemoryFlush, new std::wstring(path));
  return true;
}

inline void MemoryCloseWriting(OutputStream& out) { delete static_cast<std::wstring*>(out.Context); }

inline void MemoryDelete(const wchar_t* path) { MemoryFiles.erase(path); }

inline int ScreenRedraws = 0;
inline void CountRedraw() { ++ScreenRedraws; }

struct ShapeCall {
  std::string Kind;        // "disc", "square", "triangle", "line", "label"
  uint32_t Page;
  int V[6];
  std::string Text;
};

inline std::vector<ShapeCall> Shapes;

inline void ShapeDisc(int l, int t, int r, int b) { Shapes.push_back({"disc", Capture.Selected, {l, t, r, b, 0, 0}, ""}); }
inline void ShapeSquare(int l, int t, int r, int b) {
  Shapes.push_back({"square", Capture.Selected, {l, t, r, b, 0, 0}, ""});
}
inline void ShapeTriangle(const int* p) {
  Shapes.push_back({"triangle", Capture.Selected, {p[0], p[1], p[2], p[3], p[4], p[5]}, ""});
}
inline void ShapeLine(int width, int x1, int y1, int x2, int y2) {
  Shapes.push_back({"line", Capture.Selected, {width, x1, y1, x2, y2, 0}, ""});
}
inline void ShapeLabel(int x, int y, const char* text) { Shapes.push_back({"label", Capture.Selected, {x, y, 0, 0, 0, 0}, text}); }
// Every character 6 pixels wide, 10 high.
inline void ShapeLabelSize(const char* text, int* width, int* height) {
  *width = 6 * (int)std::string(text).size();
  *height = 10;
}

// A fresh map (see FreshMap) with the background set empty, the memory
// files and the recording surface installed.
inline void FreshBackground(int windowSide, int mapSize, double originX, double originY) {
  FreshMap(windowSide, mapSize);
  SetMapOrigin(originX, originY);
  MemoryFiles.clear();
  Shapes.clear();
  ScreenRedraws = 0;
  BackgroundFileAccess = {MemoryOpenForReading, MemoryOpenForWriting, MemoryCloseReading,
                          MemoryCloseWriting, MemoryDelete, CountRedraw};
  BackgroundSurface = {ShapeDisc, ShapeSquare, ShapeTriangle, ShapeLine, ShapeLabel, ShapeLabelSize};
  BackgroundProgress = BackgroundProgressRecord();
  ForgetBackgroundFiles();
}

// The page (col,row)'s grid page number.
inline uint32_t GridPage(int col, int row) {
  const TilePage* tile = TileEntry(col, row);
  return tile ? tile->Grid : 0;
}

inline std::vector<ShapeCall> ShapesOfKind(const char* kind) {
  std::vector<ShapeCall> found;
  for (const ShapeCall& s : Shapes)
    if (s.Kind == kind) found.push_back(s);
  return found;
}
