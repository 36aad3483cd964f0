-- Every statement that is composed for a catalogue, and the dialect's answer: 0, or the number under
-- which it is refused. The values stand for any.
0 UPDATE PhotoMaster SET szFileName = 'g1', byteInfoSync = 1 WHERE szGUID = 'g1'
0 UPDATE FolderInfo SET szFolderName = '개인 폴더' WHERE dwFolderID = 1
0 UPDATE FolderInfo SET szFolderName = '공용 폴더' WHERE dwFolderID = 1
0 UPDATE FolderInfo SET szFolderName = '게스트 폴더' WHERE dwFolderID = 1
0 INSERT INTO FolderInfo (dwFolderID, dwParentID, szFolderName, nSpaceType) values (101, -1, 'g1', 1)
0 INSERT INTO FolderInfo (dwFolderID, dwParentID, szFolderName) values (102, -1, 'g1')
3022 INSERT INTO VersionInfo(szName, szVersion) values('SyncUploadList', 'g1')
0 SELECT szVersion FROM VersionInfo WHERE szName = 'g1'
0 UPDATE VersionInfo SET szVersion = 'g1' WHERE szName = 'g1'
0 UPDATE VersionInfo SET szVersion = '2016-06-16 12:00:00' WHERE szName = 'PhotoTrashMaster'
0 SELECT a.dwFolderID, b.dwFolderID as IsVersion FROM FolderInfo as a LEFT OUTER JOIN Config_ActiveFolder as b ON a.dwFolderID = b.dwFolderID
0 SELECT * FROM FolderInfo
0 SELECT * FROM FolderInfo WHERE dwFolderID = 1
0 SELECT dwParentID, dwFolderID, szFolderName FROM FolderInfo WHERE dwFolderID = (SELECT dwParentID FROM FolderInfo WHERE dwFolderID = 1)
0 SELECT szFolderName FROM FolderInfo WHERE dwFolderID = 1
0 SELECT dwParentID FROM FolderInfo WHERE dwFolderID = 1
0 SELECT dwFolderID FROM FolderInfo WHERE dwParentID = 1 and szFolderName = 'g1'
0 SELECT * FROM FolderInfo WHERE dwParentID = 1 ORDER BY szFolderName
0 SELECT * FROM FolderInfo WHERE dwParentID = 1
0 SELECT Count(*) as Count FROM FolderInfo WHERE dwParentID = 1
0 UPDATE FolderInfo SET szFolderName = 'g1', szDesc = 'g1' WHERE dwFolderID = 1
0 UPDATE FolderInfo SET szModifiedDate = '2020-01-02 03:04:05' WHERE dwFolderID = 1
0 UPDATE FolderInfo SET szIModifiedDate = '2020-01-02 03:04:05' WHERE dwFolderID = 1
0 UPDATE FolderInfo SET dwParentID = 1 WHERE dwFolderID = 2
0 DELETE FROM FolderInfo WHERE dwFolderID = 1
0 SELECT * FROM FolderInfo WHERE dwFolderID <> 1 and dwFolderID <> 2 and dwFolderID <> 3 order by dwParentID
0 SELECT dwFolderID FROM FolderInfo WHERE dwParentID = 1
0 SELECT * FROM FolderInfo WHERE dwParentID = 1 AND dwFolderID <> 0 ORDER BY szFolderName
0 SELECT dwFolderID FROM Config_ActiveFolder
0 SELECT dwFolderID FROM Config_ActiveFolder WHERE dwFolderID = 1
0 INSERT INTO Config_ActiveFolder (dwFolderID) values (1)
0 INSERT INTO Config_ActiveFolder (dwFolderID) select dwFolderID FROM FolderInfo WHERE dwFolderID <> 0
0 DELETE FROM Config_ActiveFolder WHERE dwFolderID = 1
0 DELETE FROM PhotoMaster WHERE dwFolderID = 1
0 DELETE FROM PhotoMaster WHERE dwFolderID NOT IN (SELECT dwFolderID FROM Config_ActiveFolder)
0 UPDATE FolderInfo SET byteCache = 0
0 UPDATE FolderInfo SET byteCache = 1 WHERE dwFolderID = 2
0 SELECT byteCache FROM FolderInfo WHERE dwFolderID = 1
0 SELECT COUNT(*) as Count FROM PhotoMaster WHERE dwFolderID = 1
0 UPDATE FolderInfo SET nPhotoCount = 1 WHERE dwFolderID = 2
0 SELECT Count(*) as Count FROM PhotoMaster WHERE dwFolderID = 1 AND szLTBURL <> ''
0 UPDATE FolderInfo SET bSecureFolder = '1', szFolderPassword = 'g1' WHERE dwFolderID = 1
0 UPDATE FolderInfo SET bSecureFolder = '1', szFolderPassword = 'g1', szSecureFolderSetter = 'g1' WHERE dwFolderID = 1
0 UPDATE FolderInfo SET bSharedOption = 1 WHERE dwFolderID = 2
0 UPDATE FolderInfo SET nFolderUpDownType = 1, bAllowPreviewImage = 2, bAllowComment = 3 WHERE dwFolderID = 4
0 SELECT dwFolderID FROM FolderInfo WHERE bSharedOption = 1
0 SELECT Count(*) as Count FROM FolderInfo WHERE bSharedOption = 1
0 SELECT dwFolderID FROM FolderInfo WHERE bSecureFolder = 1
0 SELECT Count(*) as Count FROM FolderInfo WHERE bSecureFolder = 1
0 SELECT dwFolderID FROM FolderInfo WHERE nFolderUpDownType <> 3
0 SELECT Count(*) as Count FROM FolderInfo WHERE nFolderUpDownType <> 3
0 SELECT dwFolderID FROM FolderInfo WHERE nFolderUpDownType = 2
0 SELECT Count(*) as Count FROM FolderInfo WHERE nFolderUpDownType = 2
0 SELECT dwFolderID, szFolderPassword FROM FolderInfo WHERE bSecureFolder = 1
0 SELECT szGUID FROM PhotoMaster WHERE byteLockStatus = 1
0 SELECT * FROM FolderInfo WHERE szIModifiedDate >= '2020-01-02 03:04:05' order by szIModifiedDate desc
0 UPDATE FolderInfo SET szCreatorSubID = 'g1', nCreatorSubIDType = 1 WHERE dwFolderID = 2
0 INSERT INTO NotifyTrash_List (szGUID, byteType) values ('', 0xFF)
0 SELECT * FROM NotifyTrash_List WHERE szGUID = '' OR szGUID = 'g1'
0 SELECT * FROM NotifyTrash_List
0 DELETE FROM NotifyTrash_List
0 INSERT INTO NotifyTag_List (dwTagID, byteType) values (-1, 255)
0 SELECT * FROM NotifyTag_List WHERE dwTagID = -1 OR (dwTagID = 1)
0 DELETE FROM PhotoMaster WHERE szGUID = 'g1'
0 SELECT * FROM PhotoMaster WHERE szGUID = 'g1'
0 SELECT dwFolderID FROM PhotoMaster WHERE szGUID = 'g1'
0 SELECT COUNT(*) as nCount FROM PhotoMaster WHERE dwFolderID = 1 AND szFileName = 'g1'
0 SELECT * FROM PhotoMaster
0 UPDATE PhotoMaster SET byteRotate = 1, byteInfoSync = 1 WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET byteRotate = (byteRotate + 1) MOD 4, byteInfoSync = 1 WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET szTitle = 'g1', byteInfoSync = 1 WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET szDesc = 'g1', byteInfoSync = 1 WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET szShootDate = '2020-01-02 03:04:05', byteInfoSync = 1 WHERE szGUID = '2020-01-02 03:04:05'
0 UPDATE PhotoMaster SET szShooter = 'g1', byteInfoSync = 1 WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET dwFolderID = 1 WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET bytePublic = 1 WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET szCameraModel = 'g1' WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET szCameraLens = 'g1' WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET byteTagSync = 1 WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET byteUploadEnd = '1' WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET byteLinkUrl = '1' WHERE szGUID = 'g1'
0 SELECT byteFlag FROM PhotoMaster WHERE szGUID = 'g1'
0 SELECT COUNT(*) as nCount FROM PhotoMaster
0 SELECT COUNT(*) as nCount FROM FolderInfo
0 SELECT szGUID FROM PhotoMaster WHERE dwFolderID = 1 AND szFileName = 'g1'
0 SELECT szGUID FROM PhotoMaster WHERE dwFolderID = 1
0 SELECT * FROM PhotoMaster WHERE dwFolderID = 1 ORDER BY szFileName
0 SELECT dwFolderID, COUNT(dwFolderID) as Count FROM PhotoMaster GROUP BY dwFolderID
0 SELECT dwFolderID, COUNT(dwFolderID) as Count FROM PhotoMaster WHERE dwFolderID IN (1,2) GROUP BY dwFolderID
0 SELECT distinct szShootDay FROM PhotoMaster ORDER BY szShootDay
0 SELECT MAX(dwTagID) FROM TagInfo
0 INSERT INTO TagInfo (dwTagID, szTagName) values (1, 'g1')
0 UPDATE TagInfo SET szTagName = 'g1' WHERE dwTagID = 1
0 DELETE FROM TagInfo WHERE dwTagID = 1
0 SELECT dwTagID FROM TagInfo WHERE szTagName = 'g1'
0 SELECT dwTagID FROM TagInfo WHERE dwTagID = 1
0 SELECT szTagName FROM TagInfo WHERE dwTagID = 1
0 SELECT szTagName FROM TagInfo WHERE dwTagID = 1 ORDER BY szTagName
0 SELECT dwTagID, szTagName FROM TagInfo ORDER BY szTagName
0 SELECT a.dwTagID, a.szTagName, COUNT(b.szGUID) as nCount FROM TagInfo as a INNER JOIN PhotoTag as b ON a.dwTagID = b.dwTagID GROUP BY a.dwTagID, a.szTagName ORDER BY a.szTagName
0 SELECT dwTagID FROM PhotoTag WHERE szGUID = 'g1' AND dwTagID = 1
0 DELETE FROM PhotoTag WHERE szGUID = 'g1'
0 DELETE FROM PhotoTag WHERE dwTagID = 1
0 SELECT szGUID FROM PhotoTag WHERE dwTagID = 1
0 SELECT distinct b.dwTagID, b.szTagName FROM PhotoTag as a INNER JOIN TagInfo as b ON a.dwTagID = b.dwTagID WHERE a.szGUID = 'g1'
0 SELECT distinct b.szTagName FROM PhotoTag as a INNER JOIN TagInfo as b ON a.dwTagID = b.dwTagID WHERE a.szGUID = 'g1' AND a.dwTagID <> 1 ORDER BY b.szTagName
0 INSERT INTO PhotoTag (szGUID, dwTagID) values ('g1', 1)
0 DELETE FROM PhotoTag WHERE szGUID = 'g1' AND dwTagID = 1
0 SELECT b.szTagName, COUNT(b.szTagName) as nCount FROM PhotoTag as a INNER JOIN TagInfo as b ON a.dwTagID = b.dwTagID WHERE a.szGUID IN ('g1','g2') AND a.dwTagID <> 1 Group By b.szTagName ORDER BY b.szTagName
0 SELECT dwTagID FROM PhotoTag WHERE szGUID = 'g1'
0 INSERT INTO RoomInfo (dwRoomID, szRoomName, byteOrgDown, byteUseComment) values (1, 'g1', 2, 3)
0 UPDATE RoomInfo SET szRoomName = 'g1', byteOrgDown = 1, byteUseComment = 2 WHERE dwRoomID = 3
0 SELECT * FROM RoomInfo WHERE dwRoomID = 1
0 SELECT * FROM RoomInfo ORDER BY szRoomName
0 DELETE FROM RoomInfo WHERE dwRoomID = 1
0 SELECT dwRoomID FROM RoomInfo WHERE dwRoomID = 1
0 SELECT dwRoomID FROM RoomInfo WHERE szRoomName = 'g1'
0 INSERT INTO AlbumInfo (dwRoomID, dwAlbumID, dwParentID, szAlbumName, szDesc) values (1, 2, 3, 'g1', 'g1')
0 UPDATE AlbumInfo SET szAlbumName = 'g1', szDesc = 'g1' WHERE dwRoomID = 1 AND dwAlbumID = 2
0 SELECT dwAlbumID FROM AlbumInfo WHERE dwRoomID = 1 AND dwParentID = 2 AND szAlbumName = 'g1'
0 SELECT dwAlbumID FROM AlbumInfo WHERE dwRoomID = 1 AND dwAlbumID = 2
0 SELECT dwRoomID, dwAlbumID, dwParentID, szAlbumName, szDesc FROM AlbumInfo WHERE dwRoomID = 1 AND dwParentID = 2 ORDER BY szAlbumName
0 SELECT dwAlbumID, dwParentID, szAlbumName, szDesc FROM AlbumInfo ORDER BY dwParentID, szAlbumName
0 SELECT dwRoomID, dwAlbumID, dwParentID, szAlbumName, szDesc FROM AlbumInfo WHERE dwRoomID = 1 AND dwAlbumID = 2
0 SELECT szAlbumName FROM AlbumInfo WHERE dwRoomID = 1 AND dwAlbumID = 2
0 INSERT INTO PhotoAlbum (szGUID, dwRoomID, dwAlbumID) values ('g1', 1, 2)
0 DELETE FROM PhotoAlbum WHERE szGUID = 'g1' AND dwRoomID = 1 AND dwAlbumID = 2
0 SELECT dwAlbumID FROM PhotoAlbum WHERE szGUID = 'g1' AND dwRoomID = 1 AND dwAlbumID = 2
0 DELETE FROM PhotoAlbum WHERE szGUID = 'g1'
0 DELETE FROM PhotoAlbum WHERE dwRoomID = 1 AND dwAlbumID = 2
0 SELECT distinct b.dwRoomID, b.dwAlbumID, b.dwParentID, b.szAlbumName, b.szDesc FROM PhotoAlbum as a INNER JOIN AlbumInfo as b ON a.dwRoomID = b.dwRoomID AND a.dwAlbumID = b.dwAlbumID WHERE a.szGUID = 'g1'
0 SELECT * FROM PhotoAlbum WHERE szGUID = 'g1'
0 SELECT b.dwRoomID, b.dwAlbumID, b.dwParentID, b.szAlbumName FROM PhotoAlbum as a INNER JOIN AlbumInfo as b ON a.dwAlbumID = b.dwAlbumID AND a.dwRoomID = b.dwRoomID WHERE a.szGUID = 'g1' ORDER BY b.szAlbumName
0 SELECT COUNT(*) as Count FROM PhotoAlbum WHERE szGUID = 'g1'
0 SELECT szGUID FROM PhotoAlbum WHERE dwRoomID = 1 AND dwAlbumID= 2
0 SELECT dwAlbumID FROM AlbumInfo WHERE dwRoomID = 1 AND dwParentID= 2
0 SELECT szGUID FROM PhotoAlbum WHERE dwRoomID = 1 GROUP BY szGUID
0 DELETE FROM AlbumInfo WHERE dwRoomID = 1 AND dwAlbumID = 2
0 SELECT * FROM PhotoTrashMaster WHERE szGUID = 'g1'
0 SELECT COUNT(*) as nCount FROM PhotoTrashMaster
0 DELETE FROM PhotoTrashMaster WHERE szGUID = 'g1'
0 DELETE FROM PhotoSyncProcess WHERE szGUID = 'g1'
0 UPDATE PhotoMaster SET byteInfoSync = 0, byteTagSync = 0 WHERE szGUID = 'g1'
0 UPDATE PhotoSyncProcess SET byteInfoSync = 1 WHERE szGUID IN (SELECT szGUID From PhotoMaster WHERE byteInfoSync = 1)
0 UPDATE PhotoSyncProcess SET byteTagSync = 1 WHERE szGUID IN (SELECT szGUID From PhotoMaster WHERE byteTagSync = 1)
0 UPDATE PhotoMaster SET byteInfoSync = 0, byteTagSync = 0 WHERE szGUID IN (SELECT szGUID From PhotoSyncProcess)
0 INSERT INTO PhotoSyncProcess (szGUID, byteInfoSync, byteTagSync) SELECT szGUID, byteInfoSync, byteTagSync From PhotoMaster WHERE byteInfoSync = 1 OR byteTagSync = 1
0 UPDATE PhotoMaster SET byteInfoSync = 0, byteTagSync = 0 WHERE byteInfoSync = 1 OR byteTagSync = 1
0 SELECT top 1 b.byteInfoSync as bInfoSync, b.byteTagSync as bTagSync, a.* FROM PhotoMaster as a INNER JOIN PhotoSyncProcess as b ON a.szGUID = b.szGUID
0 SELECT b.dwTagID, a.szGUID, a.szFileName, a.bytePublic, a.byteFlag, a.byteComment, a.dxFileSize, a.wWidth, a.wHeight, a.dwFolderID, a.byteRotate, a.szShootDate, a.szRegDate, a.wExifISO FROM PhotoMaster as a INNER JOIN (SELECT * From PhotoTag WHERE dwTagID IN (1,2) ORDER BY szGUID) as b ON a.szGUID = b.szGUID ORDER BY b.dwTagID
0 SELECT a.* FROM PhotoMaster as a INNER JOIN FolderInfo as b ON a.szGUID = b.szIconGUID WHERE b.dwFolderID = 1
0 SELECT szGUID FROM PhotoMaster WHERE dwFolderID = 1 AND szLTBURL <> '' ORDER BY szRegDate DESC, szShootDate DESC, szGUID DESC
0 delete from IX_PT
0 Insert into IX_PT select szGUID from PhotoTag where dwTagID = 1
0 delete from IX_PT1
0 insert into IX_PT1 select a.szGUID from PhotoTag as a INNER JOIN IX_PT as b ON a.szGUID = b.szGUID where a.dwTagID = 1
0 delete a.* from IX_PT as a LEFT OUTER JOIN IX_PT1 as b ON a.szGUID = b.szGUID where b.szGUID IS NULL
0 SELECT * from IX_PT
0 SELECT a.* FROM PhotoMaster as a INNER JOIN IX_PT as b ON a.szGUID = b.szGUID
0 SELECT szPathName FROM PhotoRP WHERE szGUID = 'g1'
0 INSERT INTO PhotoRP (szGUID, szPathName) values ('g1', 'g1')
0 UPDATE PhotoRP SET szPathName = 'g1' WHERE szGUID = 'g1'
0 DELETE FROM PhotoRP WHERE szGUID = 'g1'
0 SELECT szPathName FROM PhotoOP WHERE szGUID = 'g1'
0 SELECT * FROM PhotoOP
0 UPDATE PhotoOP SET szPathName = 'g1' WHERE szGUID = 'g1'
0 DELETE FROM PhotoOP WHERE szGUID = 'g1'
0 INSERT INTO CameraModel (szName) values ('g1')
0 SELECT szName FROM CameraModel ORDER BY szName ASC
0 INSERT INTO MyCameraModel (szName) values ('g1')
0 SELECT szName FROM MyCameraModel ORDER BY szName ASC
0 INSERT INTO CameraLens (szName) values ('g1')
0 SELECT szName FROM CameraLens ORDER BY szName ASC
0 INSERT INTO MyCameraLens (szName) values ('g1')
0 SELECT szName FROM MyCameraLens ORDER BY szName ASC
0 DELETE FROM PhotoMaster
0 DELETE FROM PhotoTag
0 DELETE FROM PhotoTrashMaster
0 DELETE FROM FolderInfo WHERE dwFolderID <> 1 AND dwFolderID <> 2 AND dwFolderID <> 3 AND dwFolderID <> 4 AND dwFolderID <> 5 AND dwFolderID <> 6
0 DELETE FROM Config_ActiveFolder
0 DELETE FROM TagInfo
0 DELETE FROM RoomInfo WHERE dwRoomID <> 0
0 DELETE FROM AlbumInfo
0 DELETE FROM PhotoAlbum
0 DELETE FROM CameraModel
0 DELETE FROM CameraLens
0 DELETE FROM MyCameraModel
0 DELETE FROM MyCameraLens
0 DELETE FROM PhotoSyncProcess
0 DELETE FROM PhotoRP
0 DELETE FROM PhotoOP
0 DELETE FROM NotifyFolder_Tree
0 DELETE FROM NotifyFolder_List
0 DELETE FROM NotifyTag_Tree
0 DELETE FROM NotifyTag_List
0 DELETE FROM FolderInfo
0 DELETE FROM NotifyDate_List
0 DELETE FROM NotifyDate_Tree
0 DELETE FROM RoomInfo
0 DELETE FROM VersionInfo
0 INSERT INTO RoomInfo (dwRoomID, szRoomName, byteOrgDown, byteUseComment) values (0, '갤러리', 0, 0)
0 delete From PhotoMaster where dwFolderID = (select a.dwFolderID From (select distinct dwFolderID from PhotoMaster) as a Left Outer Join FolderInfo as b On a.dwFolderID = b.dwFolderID WHERE b.dwFolderID is NULL)
0 SELECT COUNT(*) as Count FROM UploadList
0 SELECT COUNT(*) as Count FROM UploadList WHERE nStatus = 1
0 SELECT COUNT(*) as Count FROM UploadList WHERE nStatus < 0
0 SELECT * FROM UploadList WHERE szGUID = 'g1'
0 SELECT * FROM UploadList ORDER BY nDispOrder ASC
0 SELECT MAX(nDispOrder) as MaxDispOrder FROM UploadList
0 SELECT COUNT(*) as nCount FROM UploadList WHERE nStatus <> 1 and nStatus <> 2
0 SELECT COUNT(*) as Count FROM UploadList WHERE nStatus IN (1,2)
0 SELECT dxFileSize FROM UploadList WHERE nStatus IN (1,2)
0 SELECT dxSentBytes FROM UploadList WHERE szGUID = 'g1'
0 UPDATE UploadList SET nStatus = 1 WHERE szGUID = 'g1'
0 UPDATE UploadList SET nStatus = 1, nThumbStatus = 2 WHERE szGUID = 'g1'
0 UPDATE UploadList SET dxSentBytes = 'g1' WHERE szGUID = 'g1'
0 UPDATE UploadList SET szGUID = 'g1' WHERE nID = 1
0 UPDATE UploadList SET szGUID = 'g1' WHERE szGUID = 'g1'
0 UPDATE UploadList SET nStatus = 0 WHERE nStatus = 1
0 UPDATE UploadList SET nStatus = 0 WHERE nStatus < 0 OR nStatus = 1
0 UPDATE UploadList SET nStatus = 0 WHERE nStatus IN (1,2)
0 DELETE FROM UploadList WHERE szGUID = 'g1'
0 DELETE FROM UploadList WHERE nStatus = 1 or nStatus = 2
0 DELETE FROM UploadList
0 SELECT * FROM UploadList
0 SELECT dxFileSize, dxSentBytes, nStatus FROM UploadList ORDER BY nID
0 SELECT nStatus FROM UploadList ORDER BY nDispOrder ASC
0 SELECT * FROM UploadList WHERE nStatus = 1 ORDER BY nDispOrder ASC
0 SELECT * FROM UploadList WHERE nStatus = 1 AND nThumbStatus <> 2 ORDER BY nDispOrder ASC
0 SELECT * FROM UploadList WHERE nStatus = 1 AND byteSmall = 1 AND byteImage = 0 ORDER BY nDispOrder ASC
0 SELECT * FROM UploadList WHERE nStatus = 1 AND byteSmall = 1 ORDER BY nDispOrder ASC
0 SELECT * FROM UploadList WHERE nStatus = 1 AND byteSmall = 1 AND nThumbStatus = 2 ORDER BY nDispOrder ASC
0 UPDATE UploadList SET nThumbStatus = 1 WHERE szGUID = 'g1'
0 SELECT * FROM UploadList WHERE nStatus <> 2 AND nStatus <> 3
0 INSERT INTO UploadTag (szGUID, dwTagID) values ('g1', 1)
0 SELECT dwTagID FROM UploadTag WHERE szGUID = 'g1'
0 DELETE FROM UploadTag WHERE szGUID = 'g1'
0 DELETE FROM UploadTag WHERE dwTagID = 1
0 INSERT INTO UploadAlbum (szGUID, dwRoomID, dwAlbumID) values ('g1', 1, 2)
0 SELECT dwRoomID, dwAlbumID FROM UploadAlbum WHERE szGUID = 'g1'
0 DELETE FROM UploadAlbum WHERE szGUID = 'g1'
0 DELETE FROM UploadAlbum WHERE dwRoomID = 1 AND dwAlbumID = 2
0 SELECT * FROM SyncUploadList
0 SELECT * FROM SyncUploadList WHERE szGUID = 'g1'
0 SELECT * FROM SyncUploadList WHERE nStatus = 1 ORDER BY nDispOrder ASC
0 UPDATE SyncUploadList SET nStatus = 1 WHERE szGUID = 'g1'
0 SELECT COUNT(*) as Count FROM SyncUploadList
0 SELECT dxFileSize, dxSentBytes, nStatus FROM SyncUploadList ORDER BY nID
0 UPDATE SyncUploadList SET szGUID = 'g1' WHERE nID = 1
0 UPDATE SyncUploadList SET szGUID = 'g1' WHERE szGUID = 'g1'
0 DELETE FROM SyncUploadList

-- For the search database, whose tables are made first.
0 CREATE TABLE SearchFolderInfo (dwFolderID INTEGER PRIMARY KEY, dwParentID INTEGER, szFolderName MEMO, szModifiedDate CHAR(19))
0 CREATE INDEX IX1_FOLDERDB ON SearchFolderInfo (dwParentID, szFolderName)
0 CREATE TABLE SearchPhotoMaster (szGUID CHAR(36) PRIMARY KEY, szMD5 CHAR(40), szFileName MEMO, dxFileSize DOUBLE, szOPURL VARCHAR(255), dwFolderID INTEGER, byteUploadEnd BYTE, szRegDate CHAR(19))
0 CREATE INDEX IX1_PhotoMaster ON SearchPhotoMaster (dwFolderID)
0 INSERT INTO VersionInfo(szName, szVersion) values('SearchPhotoMaster', '2014-10-01 00:00:00')
0 INSERT INTO VersionInfo(szName, szVersion) values('SearchFolderInfo', '2014-10-01 00:00:00')
0 SELECT * FROM VersionInfo WHERE szName = 'SearchPhotoMaster'
0 SELECT * FROM VersionInfo WHERE szName = 'SearchFolderInfo'
0 SELECT * FROM SearchFolderInfo
0 SELECT * FROM SearchFolderInfo WHERE dwFolderID = 1
0 SELECT dwParentID, dwFolderID, szFolderName FROM SearchFolderInfo WHERE dwFolderID = (SELECT dwParentID FROM SearchFolderInfo WHERE dwFolderID = 1)
0 SELECT * FROM SearchFolderInfo WHERE dwFolderID <> 1 and dwFolderID <> 2 and dwFolderID <> 3 order by dwParentID
0 SELECT * FROM SearchFolderInfo WHERE dwParentID = 1 ORDER BY szFolderName
0 SELECT * FROM SearchFolderInfo WHERE dwParentID = 1 AND dwFolderID <> 0 ORDER BY szFolderName
0 SELECT dwParentID FROM SearchFolderInfo WHERE dwFolderID = 1
0 SELECT szFolderName FROM SearchFolderInfo WHERE dwFolderID = 1
0 SELECT COUNT(*) as nCount FROM SearchFolderInfo
0 DELETE FROM SearchPhotoMaster WHERE dwFolderID = 1
0 DELETE FROM SearchFolderInfo WHERE dwFolderID = 1
0 DELETE FROM SearchFolderInfo WHERE dwFolderID <> 1 AND dwFolderID <> 2 AND dwFolderID <> 3
0 SELECT * FROM SearchPhotoMaster WHERE szGUID = 'g1'
0 SELECT * FROM SearchPhotoMaster
0 SELECT dwFolderID FROM SearchPhotoMaster WHERE szGUID = 'g1'
0 UPDATE SearchPhotoMaster SET dwFolderID = 1 WHERE szGUID = 'g1'
0 SELECT szGUID FROM SearchPhotoMaster WHERE dwFolderID = 1
0 SELECT * FROM SearchPhotoMaster WHERE dwFolderID = 1 ORDER BY szFileName
0 DELETE FROM SearchPhotoMaster WHERE szGUID = 'g1'
0 DELETE FROM SearchPhotoMaster WHERE dwFolderID = 1 AND szFileName = 'g1'
0 SELECT COUNT(*) as nCount FROM SearchPhotoMaster
0 SELECT * FROM SearchPhotoMaster ORDER BY szRegDate DESC
0 SELECT * FROM SearchPhotoMaster ORDER BY dxFileSize DESC
0 SELECT * FROM SearchPhotoMaster WHERE (szFileName LIKE '*a [[[]]b*' OR (szFileName LIKE '*a*' AND szFileName LIKE '*[[[]]b*')) ORDER BY szFileName

-- Refused: columns and tables that are not there, lists without an entry, what is no single statement.
3061 DELETE FROM UploadList WHERE dwFolderID = 1
3061 SELECT dwFolderID FROM UploadList WHERE szGUID = 'g1'
3075 SELECT dwFolderID, COUNT(dwFolderID) as Count FROM PhotoMaster WHERE dwFolderID IN () GROUP BY dwFolderID
3078 SELECT * FROM NoTable
3376 DROP TABLE NoTable
3142 DELETE FROM UploadTag; DELETE FROM PhotoTag
3129 PRAGMA journal_mode = OFF
3129 ATTACH 'x.db' AS x
