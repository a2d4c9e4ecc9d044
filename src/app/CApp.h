#pragma once

// Fixed application constants.
namespace CApp {
inline constexpr const char* codepage = "UTF-8";
inline constexpr const char* ext_prj = "prj";
inline constexpr const char* mask_ext_prj = "*.prj";
inline constexpr const char* ext_grp = "lst";
inline constexpr const char* mask_ext_grp = "*.lst";
inline constexpr const char* ext_prg = "cfg";
inline constexpr const char* mask_ext_prg = "*.cfg";
inline constexpr const char* mask_ext_lng = "*.lng";
inline constexpr const char* ext_hk = "hk";
inline constexpr const char* ext_ini = "ini";
inline constexpr const char* version = "0.0.3";
inline constexpr const char* date = "19.10.2023";
inline constexpr const char* full_name = "Tarvelix";
inline constexpr const char* name = "Tarvelix";
inline constexpr int rwv_data_max_size = 64;
} // namespace CApp
