/* Shared by the stand-ins for files: where a path lies, what is open, and the log of what changes on the disk. */
#ifndef TQUI_HOSTED_OPEN_FILES_H
#define TQUI_HOSTED_OPEN_FILES_H

#include <map>

#include <sys/stat.h>

#include "hosted/standin.h"

constexpr DWORD FILE_READ_DATA = 1;
constexpr DWORD FILE_WRITE_DATA = 2;
constexpr DWORD DELETE_DATA = FILE_SHARE_DELETE; /* stands for DELETE: the bit by which it is shared */
constexpr DWORD ERROR_NOACCESS = 998;

struct ResolvedPath {
    DWORD dwError = 0;        /* why the path cannot be one */
    bool bNeedFolder = false; /* ends in a separator */
    bool bNul = false;        /* the null device, which can only be opened */
    std::string host;
};
ResolvedPath Resolve(std::u16string_view wcPath);
ResolvedPath Resolve(LPCWSTR wcPath);

struct OpenFile {
    int nDescriptor = -1; /* -1: the slot is free */
    u32 ulSerial = 0;     /* of the handle, so that a closed one never lives again */
    u64 ulDevice = 0;
    u64 ulNode = 0;
    DWORD dwAccess = 0; /* FILE_READ_DATA, FILE_WRITE_DATA, DELETE_DATA */
    DWORD dwShare = 0;
    i64 lPosition = 0;
    bool bDeletes = false; /* its file goes when the last handle on it is closed */
};

/* The open file of a handle, or null. */
OpenFile* FindFile(HANDLE hFile);

/* Closes the descriptor of an open file. One that is to be deleted goes, or goes with the last handle on it. */
void CloseOpenFile(OpenFile* pFile);

/* Other open file of the same node, or null. */
OpenFile* FindSameFile(const OpenFile& file);

/* How often each file was opened or made since ResetCallCounts, by its path on the host. */
std::map<std::string, int>& OpenCounts();

/* 1 when somebody has the file open without sharing its deletion. */
bool IsHeld(const struct stat& file);

/* Finds what is at a path, of a link the link itself. Result: 1, or 0 with the last error set. */
BOOL LookUp(LPCWSTR tcPath, std::string* pHost, struct stat* pThere);

/* The log of LogDisk; without one these do nothing. LogBefore comes in front of a change at a path that may have
   something already, the others behind the change. ulNode is the file's number on the host. */
void LogBefore(const std::string& host);
void LogCreation(const std::string& host, u64 ulNode);
void LogEmptying(u64 ulNode);
void LogWrite(u64 ulNode, i64 lAt, const void* pBytes, size_t cb);
void LogFlush(u64 ulNode);
void LogRename(const std::string& from, const std::string& to, bool bDurable);
void LogDeletion(const std::string& host);

#endif
