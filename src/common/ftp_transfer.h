// Single files to and from another site's FTP server.
#pragma once

#include <QString>

#include "layer_export.h"

namespace kalvor {

// All results: 0 = done, -1 = any error that is neither of the next, -2 = the server refused, -3 = no connection, or
// it broke. The location is ftp://host/folder or host/folder; the connection is closed in every case.
enum FtpResult : int { FtpDone = 0, FtpOtherError = -1, FtpReplyError = -2, FtpSocketError = -3 };

// Stores the file in the location's folder under its own name. Under a temporary name = it is stored without its
// extension and renamed when it is whole, so a receiver who watches for the extension never sees a part of it.
KALVOR_RULES int UploadFileOnFTP(const QString& localFile, const QString& location, const QString& user,
                                 const QString& password, quint16 port, bool temporaryName);

// Fetches the file into the local folder, made when it is missing, under the name after the last "/". A file that is
// there and holds the beginning of the remote one is what an interrupted transfer left: the rest is fetched. Any
// other file that is there stays as it is, and its remote one is not deleted. Errors are logged.
KALVOR_RULES int DownloadFileFromFTP(const QString& remoteFile, const QString& localFolder, const QString& location,
                                     const QString& user, const QString& password, quint16 port,
                                     bool deleteAfterDownload);

// True when the server let the user in.
KALVOR_RULES bool TestFTPConnection(const QString& location, const QString& user, const QString& password,
                                    quint16 port);

}  // namespace kalvor
