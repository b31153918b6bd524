// A map surface for the tests: it records every drawing call, and a record
// sink that keeps the data file's bytes.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "core/state.h"
#include "datafile/records.h"
#include "map/live_map.h"
#include "map/map_canvas.h"
#include "map/map_surface.h"

struct MapCall {
  std::string Kind;     // "create", "delete", "fill", "line", "ellipse", "blit", "wfill", "wline", "wellipse", "text", "label"
  uint32_t Page;        // page drawn into, or blitted
  int Pen, Brush;
  int A, B, C, D;
  int RasterOp;
  std::string Text;
};

struct MapCaptureRecord {
  std::vector<MapCall> Calls;
  uint32_t Selected = 0;
  uint32_t NextPage = 0;
  std::string FileBytes;
};

inline MapCaptureRecord Capture;

inline void CaptureAdd(const char* kind, uint32_t page, int pen, int brush, int a, int b, int c,
                       int d, int rop = 0, const char* text = "") {
  Capture.Calls.push_back({kind, page, pen, brush, a, b, c, d, rop, text});
}

inline uint32_t CaptureCreatePage(int side) {
  ++Capture.NextPage;
  CaptureAdd("create", Capture.NextPage, 0, 0, side, 0, 0, 0);
  return Capture.NextPage;
}
inline void CaptureDeletePage(uint32_t page) { CaptureAdd("delete", page, 0, 0, 0, 0, 0, 0); }
inline void CaptureSelectPage(uint32_t page) { Capture.Selected = page; }
inline void CaptureFillPageWhite(int side) { CaptureAdd("fill", Capture.Selected, 0, 0, side, 0, 0, 0); }
inline void CapturePageLine(int pen, int x1, int y1, int x2, int y2) {
  CaptureAdd("line", Capture.Selected, pen, 0, x1, y1, x2, y2);
}
inline void CapturePageEllipse(int pen, int brush, int l, int t, int r, int b) {
  CaptureAdd("ellipse", Capture.Selected, pen, brush, l, t, r, b);
}
inline void CaptureUseWindow(HandleWord) {}
inline void CaptureBlit(uint32_t page, int x, int y, int w, int h, int rop) {
  CaptureAdd("blit", page, 0, 0, x, y, w, h, rop);
}
inline void CaptureWindowFill(int l, int t, int r, int b) { CaptureAdd("wfill", 0, 0, 0, l, t, r, b); }
inline void CaptureWindowLine(int pen, int x1, int y1, int x2, int y2) {
  CaptureAdd("wline", 0, pen, 0, x1, y1, x2, y2);
}
inline void CaptureWindowEllipse(int pen, int brush, int l, int t, int r, int b) {
  CaptureAdd("wellipse", 0, pen, brush, l, t, r, b);
}
inline void CaptureText(int x, int y, const char* text) { CaptureAdd("text", 0, 0, 0, x, y, 0, 0, 0, text); }
inline void CaptureLabel(const char* text) { CaptureAdd("label", 0, 0, 0, 0, 0, 0, 0, 0, text); }

inline void CaptureSink(const char* bytes, size_t count) { Capture.FileBytes.append(bytes, count); }

inline void InstallCapture() {
  MapDrawing = {CaptureCreatePage, CaptureDeletePage, CaptureSelectPage, CaptureFillPageWhite,
                CapturePageLine,   CapturePageEllipse, CaptureUseWindow, CaptureBlit,
                CaptureWindowFill, CaptureWindowLine, CaptureWindowEllipse, CaptureText,
                CaptureLabel};
  DataFileSink = CaptureSink;
}

// A fresh program with a map window of `windowSide` pixels and a map of
// `mapSize` units on a side; the calls so far are forgotten.
inline void FreshMap(int windowSide, int mapSize) {
  ResetProgramState();
  InstallCapture();
  Capture = MapCaptureRecord();
  MapWindow.MapWndWidth = windowSide;
  Settings.MapSize = mapSize;
  ApplyMapWindowSide(windowSide);
  RecomputeGridStep();
  Session.MapVisible = 1;
}

inline void ForgetCalls() { Capture.Calls.clear(); }

inline std::vector<MapCall> CallsOfKind(const char* kind) {
  std::vector<MapCall> found;
  for (const MapCall& call : Capture.Calls)
    if (call.Kind == kind) found.push_back(call);
  return found;
}

inline int CountCalls(const char* kind) { return (int)CallsOfKind(kind).size(); }

// The lines drawn into one page as "x1,y1-x2,y2" texts, in order.
inline std::vector<std::string> LinesIn(uint32_t page) {
  std::vector<std::string> lines;
  for (const MapCall& call : Capture.Calls) {
    if (call.Kind != "line" || call.Page != page) continue;
    lines.push_back(std::to_string(call.A) + "," + std::to_string(call.B) + "-" +
                    std::to_string(call.C) + "," + std::to_string(call.D));
  }
  return lines;
}

inline std::string Joined(const std::vector<std::string>& parts) {
  std::string all;
  for (const std::string& part : parts) all += (all.empty() ? "" : " ") + part;
  return all;
}

// The data file's records, one text each, without their line feeds.
inline std::vector<std::string> FileRecords() {
  std::vector<std::string> records;
  std::string current;
  for (char c : Capture.FileBytes) {
    if (c == '\n') {
      records.push_back(current);
      current.clear();
    } else {
      current += c;
    }
  }
  return records;
}
