Attribute VB_Name = "FirstMeasurement"
' The first measurement from VBA, with the module TqImage20.bas in the same project: an evenly lit target, the
' luminous intensity of what lights it, and the mean grey level of a polygon.
Option Explicit

Public Sub Measure()
    ' [measurement]
    Dim header As TqImageHeader, image As LongPtr
    header.PelCols = 640: header.PelRows = 480
    header.BinCols = 1: header.BinRows = 1
    header.PelsPerMeterX = 1000: header.PelsPerMeterY = 1000
    header.SourceDistance = 2: header.LuxPerGrey = 0.01
    header.CenterCol = 319.5: header.CenterRow = 239.5
    If tqCreateImage(header, image) <> 0 Then Err.Raise vbObjectError + 1, , "no memory for the image"
    tqInitializeImagePels image, 12000

    Dim candela As Double, horizontal As Double, vertical As Double, offAxis As Double
    If tqCalcCandela(image, 320, 240, candela, horizontal, vertical, offAxis, 21, 21, 0) = 0 Then
        Debug.Print Format(candela, "0.00"); " cd"
    End If
    ' [measurement]

    ' [polygon]
    Dim triangle(0 To 1, 0 To 2) As Long ' (0, i) is the column of vertex i, (1, i) its row
    triangle(0, 0) = 100: triangle(1, 0) = 100
    triangle(0, 1) = 200: triangle(1, 1) = 100
    triangle(0, 2) = 150: triangle(1, 2) = 180
    Debug.Print tqGetPelBlockAvgPoly(image, triangle)
    ' [polygon]
    tqImageFree image
End Sub
